#include "app/window/elided_label.h"
#include "app/window/status_line.h"
#include "window_main.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QFile>
#include <QSignalSpy>
#include <QtTest>

namespace vornic {
namespace {

class StatusLineTest : public testing::Test
{
protected:
    StatusLineTest()
    {
        line.resize(600, line.height());
        line.show();
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(145'408));
    }

    QAbstractButton &button(const char *name) { return *line.findChild<QAbstractButton *>(name); }
    ElidedLabel &label() { return *line.findChild<ElidedLabel *>(); }

    const QTemporaryDir folder;
    const QString path = folder.filePath("Untitled.mp4");
    StatusLine line;
};

TEST_F(StatusLineTest, ItTellsWhatWasSavedAndOpensIt)
{
    line.showSaved(path, 38.6);
    EXPECT_EQ(line.text(), "Saved Untitled.mp4, 0:38, 142 KiB");
    EXPECT_EQ(label().toolTip(), path);
    const QSignalSpy open(&line, &StatusLine::openAsked);
    const QSignalSpy reveal(&line, &StatusLine::revealAsked);
    QTest::keyClick(&button("openSavedButton"), Qt::Key_Space);
    EXPECT_EQ(open, (QList<QVariantList> { { path } }));
    EXPECT_TRUE(reveal.isEmpty());
    button("revealSavedButton").click();
    EXPECT_EQ(reveal, (QList<QVariantList> { { path } }));
    for (const char *name : { "openSavedButton", "revealSavedButton" }) {
        EXPECT_TRUE(button(name).isVisible() && !button(name).toolTip().isEmpty());
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&button(name))->role(), QAccessible::Button);
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&label())->text(QAccessible::Name), line.text());
}

TEST_F(StatusLineTest, WhatIsMissingInAMovieIsToldBesideIt)
{
    line.showSaved(path, 38.6, "No sound came.");
    EXPECT_EQ(line.text(), "No sound came. Saved Untitled.mp4, 0:38, 142 KiB");
    EXPECT_EQ(label().toolTip(), path + "\nNo sound came.");
    EXPECT_TRUE(button("openSavedButton").isVisible());
}

TEST_F(StatusLineTest, ASentenceHasNoButtonsAndTheSameHeight)
{
    const int height = line.height();
    line.showSaved(path, 1);
    EXPECT_EQ(line.height(), height);
    line.showSentence("No sound came.");
    EXPECT_EQ(line.text(), "No sound came.");
    EXPECT_FALSE(button("openSavedButton").isVisible());
    EXPECT_FALSE(button("revealSavedButton").isVisible());
    EXPECT_EQ(label().toolTip(), QString());
    EXPECT_EQ(line.height(), height);
    line.clear();
    EXPECT_EQ(line.text(), QString());
}

TEST_F(StatusLineTest, ALongTextIsCutInTheMiddleAndAsksForNoWidth)
{
    const int narrow = line.minimumSizeHint().width();
    line.showSentence(QString(300, u'x'));
    QCoreApplication::processEvents();
    EXPECT_EQ(line.minimumSizeHint().width(), narrow);
    EXPECT_EQ(label().toolTip(), QString(300, u'x'));
    // As nothing is drawn beyond the label, its end is drawn within.
    line.showSentence(QString(300, u' ') + "END");
    QCoreApplication::processEvents();
    QImage picture = label().grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    int drawn = 0;
    for (int x = picture.width() / 2; x < picture.width(); ++x)
        drawn += picture.pixelColor(x, picture.height() / 2) != picture.pixelColor(picture.width() - 1, 0);
    EXPECT_GT(drawn, 0);
    line.showSentence("short");
    EXPECT_EQ(label().toolTip(), QString());
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
