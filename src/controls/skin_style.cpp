#include "controls/skin_style.h"

#include "controls/VNCheckCell.h"
#include "controls/VNComboBoxCell.h"
#include "controls/VNSliderCell.h"
#include "controls/VNStepperCell.h"
#include "controls/VNTextFieldCell.h"
#include "controls/number_field.h"
#include "controls/push_button.h"
#include "controls/skin_colors.h"
#include "controls/skin_painting.h"
#include "controls/skin_pictures.h"
#include "controls/toggle_painting.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QStyleOption>

namespace vornic {

namespace {

/// What the toolkit's editor leaves free by itself at either end.
constexpr int editorMargin = 2;
/// Between the upper and lower edge of a list and its editor, for the outline of the focus.
constexpr int editorInset = 2;

QRect sliderPart(const QStyleOptionSlider &slider, QStyle::SubControl part)
{
    if (part != QStyle::SC_SliderHandle)
        return slider.rect;
    const double range = double(slider.maximum) - double(slider.minimum);
    const double fraction = range > 0 ? (double(slider.sliderPosition) - double(slider.minimum)) / range : 0;
    return sliderKnobRect(slider.rect, fraction).toRect();
}

QRect stepperPart(const QRect &frame, QStyle::SubControl part)
{
    if (part == QStyle::SC_SpinBoxUp)
        return stepUpRect(frame).toAlignedRect();
    if (part == QStyle::SC_SpinBoxDown)
        return stepDownRect(frame).toAlignedRect();
    return part == QStyle::SC_SpinBoxFrame ? frame : QRect();
}

QRect numberPart(const QRect &frame, QStyle::SubControl part)
{
    if (part == QStyle::SC_SpinBoxEditField)
        return numberTextRect(frame).toRect();
    if (part == QStyle::SC_SpinBoxFrame)
        return frame;
    return stepperPart(numberStepperRect(frame).toRect(), part);
}

/// The mark of the chosen item of a menu or list, in the colour of its title; nothing beside the others.
void drawChosenMark(QPainter &painter, const QStyleOption &box)
{
    if (!box.state.testFlag(QStyle::State_On))
        return;
    const QPointF middle = QRectF(box.rect).center();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(box.palette.color(QPalette::Text), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF { middle + QPointF(-4, 0), middle + QPointF(-1, 3), middle + QPointF(4.5, -4) });
    painter.restore();
}

/// Around a field or list of the toolkit, whose own edge is darker than the background.
void drawFieldEdge(QPainter &painter, const QStyleOption &field)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(field.state.testFlag(QStyle::State_Enabled) ? skin::recessEdge() : skin::disabledEdge());
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(field.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.restore();
    if (field.state.testFlag(QStyle::State_HasFocus))
        drawFocusOutline(painter, field.rect, 2);
}

/// As VNCheckCell has it, in the middle of \a box.
void drawCheckBox(QPainter &painter, const QStyleOption &box)
{
    QRectF picture(0, 0, VNCheckCell::pictureSide, VNCheckCell::pictureSide);
    picture.moveCenter(QRectF(box.rect).center());
    drawSkinPicture(painter,
                    togglePicture(QStringLiteral("check"),
                                  box.state.testFlag(QStyle::State_On),
                                  box.state.testFlag(QStyle::State_Enabled),
                                  box.state.testFlag(QStyle::State_Sunken)),
                    picture);
}

QRect comboPart(const QStyleOptionComplex &combo, QStyle::SubControl part)
{
    if (part == QStyle::SC_ComboBoxArrow)
        return popupButtonRect(combo.rect).toRect();
    if (part == QStyle::SC_ComboBoxEditField)
        return popupTextRect(combo.rect)
            .toRect()
            .adjusted(-editorMargin, editorInset, editorMargin, -editorInset);
    return combo.rect;
}

} // namespace

SkinStyle *SkinStyle::shared()
{
    static QPointer<SkinStyle> instance;
    if (!instance) {
        instance = new SkinStyle;
        instance->setParent(qApp);
    }
    return instance;
}

QRect SkinStyle::subControlRect(ComplexControl control,
                                const QStyleOptionComplex *option,
                                SubControl subControl,
                                const QWidget *widget) const
{
    if (qobject_cast<const VNSliderCell *>(widget) && control == CC_Slider)
        if (const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option))
            return sliderPart(*slider, subControl);
    if (qobject_cast<const VNStepperCell *>(widget) && control == CC_SpinBox)
        return stepperPart(option->rect, subControl);
    if (qobject_cast<const NumberField *>(widget) && control == CC_SpinBox)
        return numberPart(option->rect, subControl);
    if (qobject_cast<const VNComboBoxCell *>(widget) && control == CC_ComboBox)
        return comboPart(*option, subControl);
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QRect SkinStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    if (element == SE_LineEditContents && qobject_cast<const VNTextFieldCell *>(widget))
        return textFieldTextRect(option->rect).toRect().adjusted(-editorMargin, 0, editorMargin, 0);
    return QProxyStyle::subElementRect(element, option, widget);
}

int SkinStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    if (metric == PM_SliderLength && qobject_cast<const VNSliderCell *>(widget))
        return sliderKnobRect({}, 0).toRect().width();
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int SkinStyle::styleHint(StyleHint hint,
                         const QStyleOption *option,
                         const QWidget *widget,
                         QStyleHintReturn *returnData) const
{
    // Typing finds an item in a menu; and a list opens below its control, as menus do.
    if (hint == SH_Menu_KeyboardSearch)
        return 1;
    if (hint == SH_ComboBox_Popup)
        return 0;
    // The insertion point inverts what is beneath it: on the blue of a selection it would be orange.
    if (hint == SH_BlinkCursorWhenTextSelected)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QSize SkinStyle::sizeFromContents(ContentsType type,
                                  const QStyleOption *option,
                                  const QSize &size,
                                  const QWidget *widget) const
{
    if (const auto *button = qobject_cast<const QPushButton *>(widget); button && type == CT_PushButton)
        return pushButtonSize(*button);
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

void SkinStyle::drawControl(ControlElement element,
                            const QStyleOption *option,
                            QPainter *painter,
                            const QWidget *widget) const
{
    if (const auto *button = qobject_cast<const QPushButton *>(widget); button && element == CE_PushButton)
        paintPushButton(*painter, *button);
    else
        QProxyStyle::drawControl(element, option, painter, widget);
}

void SkinStyle::drawComplexControl(ComplexControl control,
                                   const QStyleOptionComplex *option,
                                   QPainter *painter,
                                   const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox || control == CC_SpinBox)
        drawFieldEdge(*painter, *option);
}

void SkinStyle::drawPrimitive(PrimitiveElement element,
                              const QStyleOption *option,
                              QPainter *painter,
                              const QWidget *widget) const
{
    if ((element == PE_IndicatorCheckBox && qobject_cast<const QMenu *>(widget))
        || element == PE_IndicatorItemViewItemCheck) {
        drawChosenMark(*painter, *option);
        return;
    }
    if (element == PE_IndicatorCheckBox && qobject_cast<const QCheckBox *>(widget)) {
        drawCheckBox(*painter, *option);
        return;
    }
    // The field is painted already.
    const bool isOurs = qobject_cast<const VNTextFieldCell *>(widget)
        || (widget && qobject_cast<const VNComboBoxCell *>(widget->parentWidget()));
    if (element != PE_PanelLineEdit || !isOurs)
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit
        || (element == PE_Frame && qobject_cast<const QAbstractItemView *>(widget)))
        drawFieldEdge(*painter, *option);
}

} // namespace vornic
