#include "x11_display_fixture.h"

#include <QPainter>

using namespace vornic;
using namespace vornic::test;

namespace {

class X11CursorTest : public X11DisplayTest
{
protected:
    void SetUp() override { startServer({ .size = QSize(640, 480) }); }

    /// A picture that is the same in no two rows, with half transparent pixels.
    static QImage arrow(QSize size, QRgb colour)
    {
        QImage picture(size, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.fillRect(0, 0, size.width() / 2, size.height(), QColor::fromRgba(colour));
        painter.fillRect(3, 5, size.width() / 2, 4, QColor(0, 0, 255, 128));
        return picture;
    }
};

TEST_F(X11CursorTest, TheShapeAndItsHotSpotAreExact)
{
    const QImage picture = arrow(QSize(20, 28), 0xffff0000);
    m_painter->movePointer(QPoint(100, 100));
    m_painter->setCursor(picture, QPoint(4, 7));
    const auto shape = m_display->cursorShape();
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->picture.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(*shape, (CursorShape { picture, QPoint(4, 7) }));
}

TEST_F(X11CursorTest, AnotherShapeIsSeen)
{
    m_painter->setCursor(arrow(QSize(20, 28), 0xffff0000), QPoint(4, 7));
    const auto first = m_display->cursorShape();
    m_painter->setCursor(arrow(QSize(32, 16), 0xff00ff00), QPoint(31, 15));
    const auto second = m_display->cursorShape();
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->picture, arrow(QSize(32, 16), 0xff00ff00));
    EXPECT_EQ(second->hotSpot, QPoint(31, 15));
    EXPECT_EQ(first->picture, arrow(QSize(20, 28), 0xffff0000));
}

TEST_F(X11CursorTest, AnUnchangedShapeIsTheSameObject)
{
    m_painter->setCursor(arrow(QSize(20, 28), 0xffff0000), QPoint(4, 7));
    const auto shape = m_display->cursorShape();
    m_painter->movePointer(QPoint(300, 300));
    EXPECT_EQ(m_display->cursorShape(), shape);
}

TEST_F(X11CursorTest, AShapeOfNothingIsNone)
{
    m_painter->setCursor(arrow(QSize(20, 28), 0xffff0000), QPoint(4, 7));
    ASSERT_TRUE(m_display->cursorShape());
    QImage nothing(16, 16, QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    m_painter->setCursor(nothing, QPoint(0, 0));
    EXPECT_FALSE(m_display->cursorShape());
}

TEST_F(X11CursorTest, ThePositionIsThatOfTheHotSpot)
{
    m_painter->setCursor(arrow(QSize(20, 28), 0xffff0000), QPoint(10, 14));
    for (const QPoint position : { QPoint(0, 0), QPoint(123, 45), QPoint(639, 479) }) {
        m_painter->movePointer(position);
        EXPECT_EQ(m_display->pointerPosition(), position);
    }
}

TEST_F(X11CursorTest, ThePointerIsNotInThePicture)
{
    const QImage picture = noisePicture(QSize(640, 480), 1);
    const auto window = m_painter->showWindow(picture, QPoint(0, 0));
    m_painter->setCursor(arrow(QSize(32, 32), 0xffff0000), QPoint(0, 0));
    m_painter->movePointer(QPoint(100, 100));
    EXPECT_EQ(grabbed(wholeDisplay()), picture);
    EXPECT_EQ(grabbed(QRect(90, 90, 60, 60)), picture.copy(90, 90, 60, 60));
    m_painter->movePointer(QPoint(200, 210));
    m_painter->drawInWindow(window, noisePicture(QSize(50, 50), 2), QPoint(190, 200));
    EXPECT_EQ(grabbed(wholeDisplay()).copy(190, 200, 50, 50), noisePicture(QSize(50, 50), 2));
}

TEST_F(X11CursorTest, AMovingPointerLeavesThePictureTheSame)
{
    m_painter->showWindow(noisePicture(QSize(640, 480), 1), QPoint(0, 0));
    m_painter->setCursor(arrow(QSize(32, 32), 0xffff0000), QPoint(0, 0));
    const auto before = m_display->grab(wholeDisplay());
    m_painter->movePointer(QPoint(300, 200));
    m_painter->movePointer(QPoint(310, 222));
    EXPECT_TRUE(m_display->grab(wholeDisplay())->isSamePicture(*before));
}

} // namespace
