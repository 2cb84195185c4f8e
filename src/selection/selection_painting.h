#pragma once

#include <QFont>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QString>

#include <optional>

class QPainter;

namespace vornic {

/// What differs from one moment of a choice to another. Pixels of the main display, from its upper left, y down.
struct SelectionLook {
    QRect rectangle;                  ///< shown bright
    QRect window {};                  ///< what a click takes; empty: no window
    std::optional<QPoint> pointer {}; ///< in the middle of the magnified view; nothing: no such view

    friend bool operator==(const SelectionLook &, const SelectionLook &) = default;
};

/// Where the things are that lie over the picture of the display.
struct SelectionLayout {
    QRect label; ///< the rectangle's size
    QRect help;
    QRect lens; ///< empty without a pointer
};

/// Paints a choice over a still picture of the display, in the picture's pixels.
///
/// Made by the selection's window; main thread only.
class SelectionPainting
{
public:
    /// \a still is the main display; \a scale is the toolkit's, by which text, lines and the magnified view grow;
    /// \a font is of scale 1.
    SelectionPainting(const QImage &still, double scale, const QFont &font, QString help);

    void paint(QPainter &painter, const SelectionLook &look) const;
    [[nodiscard]] SelectionLayout layout(const SelectionLook &look) const;
    /// What is painted otherwise.
    [[nodiscard]] QRegion changed(const SelectionLook &before, const SelectionLook &after) const;

    /// How many pixels of the screen one of the magnified view takes; the view shows lensPixels by lensPixels.
    [[nodiscard]] int zoom() const { return scaled(8); }
    static constexpr int lensPixels = 17;

private:
    [[nodiscard]] int scaled(double length) const;
    [[nodiscard]] QSize boxAround(const QString &text, int maxWidth) const;
    [[nodiscard]] QRect helpPlace(const SelectionLook &look) const;
    [[nodiscard]] QRect labelPlace(const SelectionLook &look, const QRect &help) const;
    [[nodiscard]] QRect lensPlace(const SelectionLook &look, const SelectionLayout &others) const;
    [[nodiscard]] QRect aroundPointer(const SelectionLook &look) const;
    void paintBox(QPainter &painter, const QRect &box, const QString &text) const;
    void paintLens(QPainter &painter, const QRect &lens, QPoint pointer) const;

    QImage m_still;
    QImage m_dimmed;
    double m_scale;
    QFont m_font;
    QString m_help;
};

} // namespace vornic
