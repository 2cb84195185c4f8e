#pragma once

#include <QImage>
#include <QRectF>
#include <QTransform>

class QPainter;

namespace vornic {

/// Draws a picture small. A painter takes a few of the pixels that fall on one of its own, which looks jagged; here
/// each is the average of them all. Averaging takes long, so what was made for the last drawing is kept.
///
/// Made by the logo, which draws with it; main thread only.
class ReducedPicture
{
public:
    /// As drawImageYUp() does, but smoothly also where the picture appears at less than half its size.
    void draw(QPainter &painter, const QRectF &rectangle, const QImage &picture);

    /// How often a smaller copy was made.
    [[nodiscard]] int copies() const { return m_copies; }

private:
    void copy(const QImage &picture, double factor);
    void turn(const QImage &picture, const QTransform &toDevice, QSize size);
    void drawTurned(QPainter &painter, const QImage &picture, const QTransform &toDevice, QRect box);

    QImage m_copy;
    qint64 m_original = 0; ///< the cache key of the picture that was copied
    QImage m_turned;       ///< m_copy at an angle, in device pixels; null before it is needed
    QTransform m_turnedBy; ///< from the picture to m_turned
    int m_copies = 0;
};

} // namespace vornic
