#pragma once

#include "controls/skin_pictures.h"

#include <QApplication>
#include <QEvent>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace vornic {

/// What is behind controls in tests: a colour that none of them has.
inline const QColor garish(255, 0, 255);

/// Runs the tests with widgets, but without a window system unless one is asked for.
inline int runControlTests(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

/// An empty picture of \a size points, at \a ratio pixels a point.
inline QImage blank(QSize size, int ratio)
{
    QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(garish);
    return image;
}

/// What \a control looks like, without what is behind it.
inline QImage painted(QWidget &control, int ratio)
{
    QImage image = blank(control.size(), ratio);
    control.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The pixel in the middle of the point (x, y).
inline QColor at(const QImage &image, int x, int y)
{
    const int ratio = static_cast<int>(image.devicePixelRatio());
    return image.pixelColor(x * ratio + ratio / 2, y * ratio + ratio / 2);
}

/// Whether \a image has the pixels of the picture \a name, and no others, in \a rectangle of whole points.
/// \a within limits what is compared, for pictures that something is drawn on.
inline testing::AssertionResult
shows(const QImage &image, const QString &name, const QRect &rectangle, QRect within = {})
{
    const int ratio = static_cast<int>(image.devicePixelRatio());
    const QImage picture = skinPicture(name, ratio);
    if (picture.isNull())
        return testing::AssertionFailure() << "there is no picture " << name.toStdString();
    QImage expected = image.copy();
    expected.setDevicePixelRatio(1);
    QPainter painter(&expected);
    const QRect pixels(rectangle.topLeft() * ratio, rectangle.size() * ratio);
    painter.fillRect(pixels, garish);
    painter.drawImage(pixels, picture);
    painter.end();
    if (within.isNull())
        within = rectangle;
    for (int y = within.top() * ratio; y < (within.bottom() + 1) * ratio; ++y)
        for (int x = within.left() * ratio; x < (within.right() + 1) * ratio; ++x)
            if (image.pixel(x, y) != expected.pixel(x, y))
                return testing::AssertionFailure()
                    << "pixel (" << x << ", " << y << ") is " << std::hex << image.pixel(x, y) << ", not "
                    << expected.pixel(x, y) << " of " << name.toStdString();
    return testing::AssertionSuccess();
}

/// Counts how often a control paints itself.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget &control)
    {
        control.show();
        for (int round = 0; round < 3; ++round)
            QApplication::processEvents();
        control.installEventFilter(this);
    }

    /// Since the last call.
    [[nodiscard]] int paints()
    {
        QApplication::processEvents();
        return std::exchange(m_paints, 0);
    }

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        m_paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_paints = 0;
};

} // namespace vornic
