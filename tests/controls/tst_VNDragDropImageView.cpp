#include "control_pictures.h"
#include "controls/VNDragDropImageView.h"
#include "controls/skin_colors.h"
#include "support/named_pipe.h"

#include <QAccessible>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

namespace vornic {
namespace {

QImage plain(const QColor &color, QSize size = { 20, 10 })
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

TEST(FittedPictureRect, IsWholeInTheMiddleAndNeverLarger)
{
    const QRectF bounds(10, 10, 100, 50);
    EXPECT_EQ(fittedPictureRect(bounds, { 20, 10 }), QRectF(50, 30, 20, 10));
    EXPECT_EQ(fittedPictureRect(bounds, { 400, 100 }), QRectF(10, 22.5, 100, 25));
    EXPECT_EQ(fittedPictureRect(bounds, { 100, 200 }), QRectF(47.5, 10, 25, 50));
    EXPECT_EQ(fittedPictureRect(bounds, { 100, 50 }), bounds);
}

TEST(WindowFrameForContents, KeepsTheLowerLeftCorner)
{
    // With a title of 20 points above and a border of one point.
    EXPECT_EQ(windowFrameForContents({ 100, 100, 202, 121 }, { 1, 20, 1, 1 }, { 400, 50 }),
              QRect(99, 151, 402, 71));
}

class ImageView : public testing::TestWithParam<int>
{
protected:
    ImageView()
    {
        window.resize(200, 120);
        view.setGeometry(10, 10, 120, 80);
    }
    ~ImageView() override
    {
        if (QFileDialog *panel = window.findChild<QFileDialog *>())
            delete panel;
    }

    [[nodiscard]] QMimeData &dragged(const QImage &image)
    {
        data.clear();
        data.setImageData(image);
        return data;
    }
    [[nodiscard]] QMimeData &draggedFile(const QString &path)
    {
        data.clear();
        data.setUrls({ QUrl::fromLocalFile(path) });
        return data;
    }
    [[nodiscard]] static QDropEvent drag(const QMimeData &pasteboard,
                                         Qt::DropActions actions = Qt::CopyAction)
    {
        return { { 5, 5 }, actions, &pasteboard, Qt::LeftButton, Qt::NoModifier };
    }
    [[nodiscard]] QString saved(const QImage &image, const QString &name)
    {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(image.save(path));
        return path;
    }
    void show()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QWidget window;
    VNDragDropImageView view { &window };
    QMimeData data;
    QTemporaryDir folder;
};

TEST_F(ImageView, LightsUpForADragThatItCanTake)
{
    EXPECT_EQ(view.draggingEntered(drag(dragged(plain(Qt::red)))), Qt::CopyAction);
    EXPECT_TRUE(view.highlight());
    view.draggingExited();
    EXPECT_FALSE(view.highlight());
}

TEST_F(ImageView, TakesNoDragWithoutAPictureOrWithoutCopying)
{
    data.setText(QStringLiteral("no picture"));
    EXPECT_EQ(view.draggingEntered(drag(data)), Qt::IgnoreAction);
    EXPECT_EQ(view.draggingEntered(drag(dragged(plain(Qt::red)), Qt::MoveAction | Qt::LinkAction)),
              Qt::IgnoreAction);
    EXPECT_EQ(view.draggingEntered(drag(dragged(QImage()))), Qt::IgnoreAction);
    EXPECT_FALSE(view.highlight());
}

TEST_F(ImageView, TakesAPictureFileButNoOtherFile)
{
    const QString picture = saved(plain(Qt::blue), QStringLiteral("a.png"));
    EXPECT_EQ(view.draggingEntered(drag(draggedFile(picture))), Qt::CopyAction);
    EXPECT_TRUE(view.performDragOperation(drag(data)));
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::blue));
    QFile text(folder.filePath(QStringLiteral("b.png")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture");
    text.close();
    EXPECT_FALSE(view.prepareForDragOperation(drag(draggedFile(text.fileName()))));
    EXPECT_FALSE(view.prepareForDragOperation(drag(draggedFile(folder.path()))));
    EXPECT_FALSE(view.prepareForDragOperation(drag(draggedFile(QStringLiteral("/no/such/file.png")))));
}

TEST_F(ImageView, PreparingEndsTheHighlight)
{
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::red)))));
    EXPECT_TRUE(view.prepareForDragOperation(drag(data)));
    EXPECT_FALSE(view.highlight());
    static_cast<void>(view.draggingEntered(drag(data)));
    data.clear();
    EXPECT_FALSE(view.prepareForDragOperation(drag(data)));
    EXPECT_FALSE(view.highlight());
}

TEST_F(ImageView, ADropChangesTheImageObjectItself)
{
    const auto image = std::make_shared<QImage>(plain(Qt::red));
    view.setImage(image);
    QSignalSpy changes(&view, &VNDragDropImageView::imageChanged);
    EXPECT_TRUE(view.performDragOperation(drag(dragged(plain(Qt::blue, { 7, 9 })))));
    EXPECT_EQ(view.image(), image);
    EXPECT_EQ(image->size(), QSize(7, 9));
    EXPECT_EQ(image->pixelColor(3, 3), QColor(Qt::blue));
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(ImageView, ADropAnswersYesInEveryCase)
{
    const auto image = std::make_shared<QImage>(plain(Qt::red));
    view.setImage(image);
    QSignalSpy changes(&view, &VNDragDropImageView::imageChanged);
    data.setText(QStringLiteral("no picture"));
    EXPECT_TRUE(view.performDragOperation(drag(data)));
    EXPECT_EQ(image->pixelColor(0, 0), QColor(Qt::red));
    view.setImage(nullptr);
    EXPECT_TRUE(view.performDragOperation(drag(dragged(plain(Qt::blue)))));
    EXPECT_EQ(view.image(), nullptr) << "there is no object to take it";
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(ImageView, TheToolkitsEventsGoTheSameWay)
{
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    static_cast<void>(dragged(plain(Qt::blue)));
    QDragEnterEvent enter({ 5, 5 }, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    EXPECT_TRUE(view.highlight());
    QDropEvent drop({ 5, 5 }, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_FALSE(view.highlight());
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::blue));
    data.clear();
    QDragEnterEvent nothing({ 5, 5 }, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &nothing);
    EXPECT_FALSE(nothing.isAccepted());
    EXPECT_TRUE(view.acceptDrops());
}

TEST_F(ImageView, IsASourceOfCopies)
{
    EXPECT_EQ(VNDragDropImageView::draggingSourceOperationMaskForLocal(true), Qt::CopyAction);
    EXPECT_EQ(VNDragDropImageView::draggingSourceOperationMaskForLocal(false), Qt::CopyAction);
    EXPECT_TRUE(VNDragDropImageView::acceptsFirstMouse());
}

TEST_F(ImageView, PutsItsPictureOnAPasteboard)
{
    QMimeData pasteboard;
    view.pasteboard(pasteboard, QStringLiteral("image/tiff"));
    EXPECT_TRUE(pasteboard.formats().isEmpty()) << "there is no picture";
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    view.pasteboard(pasteboard, QStringLiteral("image/tiff"));
    view.pasteboard(pasteboard, QStringLiteral("application/pdf"));
    view.pasteboard(pasteboard, QStringLiteral("text/plain"));
    EXPECT_EQ(pasteboard.formats(), QStringList({ "image/tiff", "application/pdf" }));
}

TEST_F(ImageView, ZoomsItsWindowToThePicture)
{
    show();
    EXPECT_EQ(view.windowWillUseStandardFrame(window, { 0, 0, 7, 7 }), QRect(0, 0, 7, 7)) << "no picture";
    view.setImage(std::make_shared<QImage>(plain(Qt::red, { 320, 240 })));
    const QRect frame = window.frameGeometry();
    const QRect zoomed = view.windowWillUseStandardFrame(window, { 0, 0, 7, 7 });
    const QMargins border(window.geometry().left() - frame.left(),
                          window.geometry().top() - frame.top(),
                          frame.right() - window.geometry().right(),
                          frame.bottom() - window.geometry().bottom());
    EXPECT_EQ(zoomed.marginsRemoved(border).size(), QSize(320, 240));
    EXPECT_EQ(zoomed.marginsRemoved(border).left(), frame.left());
    EXPECT_EQ(zoomed.marginsRemoved(border).bottom(), frame.bottom());
}

TEST_P(ImageView, ShowsThePictureWholeInTheMiddle)
{
    view.setImage(std::make_shared<QImage>(plain(Qt::red, { 400, 100 })));
    const QImage image = painted(view, GetParam());
    EXPECT_EQ(at(image, 60, 40), QColor(Qt::red));
    EXPECT_EQ(at(image, 6, 40), QColor(Qt::red));
    EXPECT_EQ(at(image, 113, 40), QColor(Qt::red));
    EXPECT_EQ(at(image, 60, 20), skin::recess());
    EXPECT_EQ(at(image, 60, 60), skin::recess());
    EXPECT_EQ(at(image, 60, 0), skin::recessEdge());
    view.setEnabled(false);
    EXPECT_LT(at(painted(view, GetParam()), 60, 40).red(), 128);
}

TEST_P(ImageView, TheHighlightIsAGreyLineAlongTheEdge)
{
    const QImage without = painted(view, GetParam());
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::red)))));
    const QImage with = painted(view, GetParam());
    for (const QPoint edge : { QPoint(0, 40), QPoint(1, 40), QPoint(118, 40), QPoint(60, 0), QPoint(60, 79) })
        EXPECT_EQ(at(with, edge.x(), edge.y()), QColor(128, 128, 128)) << edge.x() << ", " << edge.y();
    EXPECT_EQ(at(with, 60, 40), at(without, 60, 40));
    EXPECT_EQ(at(with, 5, 40), at(without, 5, 40));
    view.draggingExited();
    EXPECT_EQ(painted(view, GetParam()), without);
}

TEST_P(ImageView, TheHighlightIsOfTheRectangleThatIsPainted)
{
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::red)))));
    QImage image = blank(view.size(), GetParam());
    QPainter painter(&image);
    view.drawRect({ 20, 20, 40, 30 }, painter);
    painter.end();
    EXPECT_EQ(at(image, 20, 35), QColor(128, 128, 128));
    EXPECT_EQ(at(image, 60, 35), QColor(128, 128, 128));
    EXPECT_EQ(at(image, 18, 35), QColor(128, 128, 128)) << "half of its five points is outside";
    EXPECT_EQ(at(image, 40, 35), skin::recess());
}

TEST_P(ImageView, TheHighlightIsFivePointsWide)
{
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::red)))));
    QImage image = blank(view.size(), GetParam());
    QPainter painter(&image);
    view.drawRect({ 30, 20, 60, 40 }, painter);
    painter.end();
    // Across the left line, which lies about x = 30, and the upper one, about y = 20.
    const auto greyPixels = [&](QPoint from, QPoint step) {
        int count = 0;
        for (QPoint pixel = from * GetParam(); pixel.x() <= 60 * GetParam() && pixel.y() <= 40 * GetParam();
             pixel += step)
            count += image.pixelColor(pixel) == QColor(128, 128, 128) ? 1 : 0;
        return count;
    };
    EXPECT_EQ(greyPixels({ 10, 40 }, { 1, 0 }), 5 * GetParam());
    EXPECT_EQ(greyPixels({ 60, 10 }, { 0, 1 }), 5 * GetParam());
}

INSTANTIATE_TEST_SUITE_P(Ratios, ImageView, testing::Values(1, 2));

TEST_F(ImageView, AnEmptyWellShowsItsHint)
{
    const QImage empty = painted(view, 1);
    view.setPlaceholderText(QStringLiteral("Drop a picture here"));
    EXPECT_NE(painted(view, 1), empty);
    view.setImage(std::make_shared<QImage>(plain(skin::recess(), { 1, 1 })));
    EXPECT_EQ(painted(view, 1), empty);
}

TEST_F(ImageView, ThePressOpensAFilePanelForOnePicture)
{
    show();
    QTest::mouseClick(&view, Qt::LeftButton);
    auto *panel = window.findChild<QFileDialog *>();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    EXPECT_THAT(panel->nameFilters().join(' ').toStdString(), testing::HasSubstr("*.png"));
    const QString path = saved(plain(Qt::blue), QStringLiteral("a.png"));
    const auto before = view.image();
    QSignalSpy changes(&view, &VNDragDropImageView::imageChanged);
    emit panel->fileSelected(path);
    EXPECT_NE(view.image(), before) << "another object";
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(ImageView, ACancelledPanelChangesNothing)
{
    show();
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    view.popUp();
    window.findChild<QFileDialog *>()->reject();
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::red));
}

TEST_F(ImageView, AFileThatCannotBeReadLeavesThePicture)
{
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    QSignalSpy failures(&view, &VNDragDropImageView::fileUnreadable);
    view.loadFile(QStringLiteral("/no/such/file.png"));
    ASSERT_EQ(failures.count(), 1);
    EXPECT_EQ(failures.at(0).at(0).toString(), "/no/such/file.png");
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::red));
}

TEST_F(ImageView, ANamedPipeIsRefusedWithoutBeingOpened)
{
    const QString path = folder.filePath(QStringLiteral("pipe.png"));
    test::NamedPipe pipe(path);
    ASSERT_TRUE(pipe.isMade());
    EXPECT_EQ(view.draggingEntered(drag(draggedFile(path))), Qt::IgnoreAction);
    EXPECT_FALSE(view.prepareForDragOperation(drag(draggedFile(path))));
    QSignalSpy failures(&view, &VNDragDropImageView::fileUnreadable);
    view.loadFile(path);
    ASSERT_EQ(failures.count(), 1);
    EXPECT_FALSE(pipe.wasOpened());
    EXPECT_EQ(failures.at(0).value(1).toString(), "it is not a regular file");
}

TEST_F(ImageView, AFileIsWhatItsContentsSay)
{
    const QString path = saved(plain(Qt::blue), QStringLiteral("a.png"));
    const QString renamed = folder.filePath(QStringLiteral("a.jpg"));
    ASSERT_TRUE(QFile::rename(path, renamed));
    view.loadFile(renamed);
    EXPECT_EQ(view.image()->pixelColor(0, 0), QColor(Qt::blue));
}

TEST_F(ImageView, DisabledOpensNoPanel)
{
    show();
    view.setEnabled(false);
    QTest::mouseClick(&view, Qt::LeftButton);
    view.popUp();
    EXPECT_EQ(window.findChild<QFileDialog *>(), nullptr);
    view.setEnabled(true);
    QTest::mouseClick(&view, Qt::RightButton);
    EXPECT_EQ(window.findChild<QFileDialog *>(), nullptr);
}

TEST_F(ImageView, KeysPressItAndTheFocusIsVisible)
{
    show();
    view.setFocus();
    EXPECT_EQ(at(painted(view, 1), 60, 0), skin::focus());
    QTest::keyClick(&view, Qt::Key_Space);
    ASSERT_NE(window.findChild<QFileDialog *>(), nullptr);
    delete window.findChild<QFileDialog *>();
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_NE(window.findChild<QFileDialog *>(), nullptr);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&view, &escape);
    EXPECT_FALSE(escape.isAccepted());
}

TEST_F(ImageView, OnlyVisibleChangesArePainted)
{
    window.show();
    PaintCounter counter(view);
    view.setImage(view.image());
    view.draggingExited();
    EXPECT_EQ(counter.paints(), 0);
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::red)))));
    EXPECT_EQ(counter.paints(), 1);
    static_cast<void>(view.draggingEntered(drag(data)));
    EXPECT_EQ(counter.paints(), 0);
}

TEST_F(ImageView, PreparingAndPerformingADropArePainted)
{
    window.show();
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    PaintCounter counter(view);
    static_cast<void>(view.draggingEntered(drag(dragged(plain(Qt::blue)))));
    EXPECT_EQ(counter.paints(), 1);
    EXPECT_TRUE(view.prepareForDragOperation(drag(data)));
    EXPECT_EQ(counter.paints(), 1) << "the highlight goes";
    EXPECT_TRUE(view.performDragOperation(drag(data)));
    EXPECT_EQ(counter.paints(), 1) << "the picture comes";
    EXPECT_EQ(at(painted(view, 1), 60, 40), QColor(Qt::blue));
}

TEST_F(ImageView, AssistiveProgramsSeeAButtonWithAPicture)
{
    view.setAccessibleName(QStringLiteral("Logo"));
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(access->role(), QAccessible::Button);
    EXPECT_EQ(access->text(QAccessible::Name), "Logo");
    EXPECT_TRUE(access->text(QAccessible::Value).isEmpty());
    view.setImage(std::make_shared<QImage>(plain(Qt::red)));
    EXPECT_THAT(access->text(QAccessible::Value).toStdString(), testing::StartsWith("20"));
    EXPECT_TRUE(access->state().focusable);
    show();
    access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_NE(window.findChild<QFileDialog *>(), nullptr);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    return vornic::runControlTests(argc, argv);
}
