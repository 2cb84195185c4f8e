#pragma once

#include <QProxyStyle>

namespace vornic {

/// Tells the toolkit's controls where the skin has their parts, so that the mouse and their editors use the
/// geometry that they are painted with.
///
/// One for all controls, made at the first call as a child of the application; main thread only. What it
/// does not know is the application style's. It paints the mark of the chosen item of a menu
/// or list, and in the toolkit's dialogs push buttons, check boxes, and the edges of fields and lists.
class SkinStyle : public QProxyStyle
{
    Q_OBJECT
public:
    [[nodiscard]] static SkinStyle *shared();

    [[nodiscard]] QRect subControlRect(ComplexControl control,
                                       const QStyleOptionComplex *option,
                                       SubControl subControl,
                                       const QWidget *widget) const override;
    [[nodiscard]] QRect
    subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const override;
    [[nodiscard]] int
    pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint,
                                const QStyleOption *option,
                                const QWidget *widget,
                                QStyleHintReturn *returnData) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type,
                                         const QStyleOption *option,
                                         const QSize &size,
                                         const QWidget *widget) const override;
    void drawControl(ControlElement element,
                     const QStyleOption *option,
                     QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control,
                            const QStyleOptionComplex *option,
                            QPainter *painter,
                            const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element,
                       const QStyleOption *option,
                       QPainter *painter,
                       const QWidget *widget) const override;

private:
    SkinStyle() = default;
};

} // namespace vornic
