#include "app/session/session_fixture.h"
#include "app/window/hyperlink.h"
#include "overlay/overlay_geometry.h"
#include "support/named_pipe.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QImage>
#include <QSignalSpy>

#include <algorithm>
#include <utility>

namespace vornic {
namespace {

static_assert(VNLogoContext::margin == overlayMargin, "the logo's position counts in the overlay's view");

void write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Stands in for the window: remembers the panels that it should open.
class PanelFrontEnd : public FakeFrontEnd
{
public:
    std::optional<QString> picture;
    QFont shownFont;
    std::function<void(const QFont &)> fontChanged;

    void chooseLogoImage(std::function<void(std::optional<QString>)> answer) override { answer(picture); }
    void orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &)> changed) override
    {
        shownFont = selected;
        fontChanged = std::move(changed);
    }
};

class ShellTest : public SessionTest
{
protected:
    ShellTest()
        : panels(std::make_unique<PanelFrontEnd>())
        , shell(std::make_unique<VornicAppDelegate>(panels->frontEnd(), std::make_unique<VNOption>()))
    {
        shell->applicationDidFinishLaunching();
    }
    VNLogoContext &logo() { return *shell->options()->logoContext(); }

    std::unique_ptr<PanelFrontEnd> panels;
    std::unique_ptr<VornicAppDelegate> shell;
};

TEST_F(ShellTest, TheQualityIsTheListsIndex)
{
    shell->setVideoQualiy(1);
    EXPECT_EQ(shell->options()->recordQuality(), 1);
    shell->setVideoQualiy(0);
    EXPECT_EQ(shell->options()->recordQuality(), 0);
}

TEST_F(ShellTest, TheFontPanelShowsTheLogosFontAndChangesIt)
{
    shell->setFontAttrs();
    EXPECT_EQ(panels->shownFont.family(), "Helvetica Neue");
    EXPECT_EQ(fontSizePx(panels->shownFont), 20);
    QFont chosen("DejaVu Sans");
    chosen.setPixelSize(44);
    panels->fontChanged(chosen);
    EXPECT_EQ(logo().fontAttrs(), (TextAttributes { chosen }));
    shell->setFontAttrs();
    EXPECT_EQ(panels->shownFont, chosen);
}

TEST_F(ShellTest, TheWellsColoursBecomeTheLogos)
{
    shell->setFontFillColor(Qt::red);
    shell->setFontStrokeColor(Qt::yellow);
    EXPECT_EQ(logo().LogoFontFillColor(), QColor(Qt::red));
    EXPECT_EQ(logo().LogoFontStrokeColor(), QColor(Qt::yellow));
}

TEST_F(ShellTest, ThePictureIsTheChosenFiles)
{
    const QSignalSpy changed(&logo(), &VNLogoContext::logoImageChanged);
    shell->selImageFile(); // the user thinks better of it
    EXPECT_EQ(changed.size(), 0);

    QImage picture(7, 5, QImage::Format_RGB32);
    picture.fill(Qt::green);
    panels->picture = folder.filePath("ö #1.png");
    ASSERT_TRUE(picture.save(*panels->picture));
    shell->selImageFile();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(logo().getNSImage().size(), picture.size());

    panels->picture = folder.filePath("broken.png");
    write(*panels->picture, "no picture");
    shell->selImageFile();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(logo().getNSImage().size(), picture.size());
    ASSERT_EQ(panels->alerts.size(), 1);
    EXPECT_TRUE(panels->alerts.first().startsWith("Error|")) << panels->alerts.first().toStdString();
    EXPECT_TRUE(panels->alerts.first().contains("broken.png"));
}

TEST_F(ShellTest, ATooLargePictureIsScaledDownAndTheUserIsTold)
{
    QImage picture(10000, 6000, QImage::Format_Grayscale8);
    picture.fill(Qt::gray);
    panels->picture = folder.filePath("large.jpg");
    ASSERT_TRUE(picture.save(*panels->picture));
    const auto wasTold = [this](const QString &sentence) {
        application.processEvents();
        const QString sizes
            = "|It has 10000 × 6000 pixels, more than a logo may have, and became the logo with "
              "7478 × 4486.";
        return std::exchange(panels->alerts, {}) == QStringList { sentence + sizes };
    };
    shell->selImageFile();
    EXPECT_TRUE(wasTold("The picture large.jpg was scaled down."));
    EXPECT_EQ(logo().getNSImage().size(), QSize(7478, 4486));
    shell->setLogoImage(picture);
    EXPECT_TRUE(wasTold("The picture was scaled down."));
    logo().setNSImage(picture); // as the overlay does
    EXPECT_TRUE(panels->alerts.isEmpty()) << "a drop is not held up";
    EXPECT_TRUE(wasTold("The picture was scaled down."));
}

TEST_F(ShellTest, ANamedPipeIsNoPictureAndIsNotWaitedFor)
{
    panels->picture = folder.filePath("pipe.png");
    test::NamedPipe pipe(*panels->picture);
    ASSERT_TRUE(pipe.isMade());
    shell->selImageFile();
    EXPECT_FALSE(pipe.wasOpened());
    EXPECT_EQ(panels->alerts,
              QStringList { "Error|The picture " + *panels->picture
                            + " cannot be read: it is not a regular file." });
}

TEST_F(ShellTest, TheTitlesHaveTheirGrey)
{
    EXPECT_EQ(VornicAppDelegate::attributeForChkTitle(), QColor(157, 157, 157));
}

TEST_F(ShellTest, HelpIsCopiedOnceAndOpened)
{
    const QString help = folder.filePath("share/Help.pdf");
    const QString copy = folder.filePath("cache/com.kavlor.vornic/Help.pdf");
    shell->helpScreenRecord();
    EXPECT_TRUE(panels->told.filter("open").isEmpty());
    EXPECT_FALSE(QFile::exists(copy));

    write(help, "first");
    shell->setHelpDocument(help);
    shell->helpScreenRecord();
    EXPECT_EQ(panels->told.last(), "open " + copy);
    EXPECT_EQ(contents(copy), "first");
    write(help, "second");
    shell->helpScreenRecord();
    EXPECT_EQ(contents(copy), "first"); // never refreshed
}

TEST_F(ShellTest, HelpIsReadFromNoNamedPipe)
{
    const QString help = folder.filePath("share/Help.pdf");
    const QString copy = folder.filePath("cache/com.kavlor.vornic/Help.pdf");
    write(help, "help");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(copy).path()));
    shell->setHelpDocument(help);
    {
        test::NamedPipe pipe(copy);
        ASSERT_TRUE(pipe.isMade());
        shell->helpScreenRecord();
        EXPECT_EQ(panels->told.last(), "open " + help);
        EXPECT_FALSE(pipe.wasOpened());
    }
    ASSERT_TRUE(QFile::remove(copy) && QFile::remove(help));
    panels->told.clear();
    test::NamedPipe pipe(help);
    ASSERT_TRUE(pipe.isMade());
    shell->helpScreenRecord();
    EXPECT_EQ(panels->told, QStringList());
    EXPECT_FALSE(pipe.wasOpened());
}

TEST_F(ShellTest, SystemsAboveTheSixthOfTheTenth)
{
    EXPECT_TRUE(VornicAppDelegate::osOverLion("12"));
    EXPECT_TRUE(VornicAppDelegate::osOverLion("11.0"));
    EXPECT_TRUE(VornicAppDelegate::osOverLion("10.7"));
    EXPECT_FALSE(VornicAppDelegate::osOverLion("10.6"));
    EXPECT_FALSE(VornicAppDelegate::osOverLion("10"));
    EXPECT_FALSE(VornicAppDelegate::osOverLion("9.9"));
    EXPECT_FALSE(VornicAppDelegate::osOverLion("unknown"));
    EXPECT_FALSE(VornicAppDelegate::osOverLion(QString()));
}

TEST_F(ShellTest, AnErrorHasItsMessage)
{
    shell->alertError("It did not work.");
    EXPECT_EQ(panels->alerts, QStringList { "Error|It did not work." });
}

TEST_F(ShellTest, ALinkIsBlueAndUnderlined)
{
    const QString link = hyperlinkFromString("a <b>", QUrl("https://example.org/?a=1&b=ö"));
    EXPECT_EQ(link,
              "<a href=\"https://example.org/?a=1&amp;b=%C3%B6\">"
              "<span style=\"color:#0000ff; text-decoration:underline\">a &lt;b&gt;</span></a>");
}

TEST_F(ShellTest, OptionsAreStoredAtTheEndOnly)
{
    makeDelegate(nullptr); // on the stored ones
    delegate->options()->setRecordQuality(1);
    delegate->options()->logoContext()->setLogoText("kept");
    {
        VornicAppDelegate second(panels->frontEnd());
        EXPECT_EQ(second.options()->recordQuality(), 0);
    }
    delegate->applicationWillTerminate();
    VornicAppDelegate third(panels->frontEnd());
    EXPECT_EQ(third.options()->recordQuality(), 1);
    EXPECT_EQ(third.options()->logoContext()->LogoText(), "kept");
}

TEST_F(ShellTest, TheDesktopStaysAwakeWhileRecordingAndWriting)
{
    ASSERT_TRUE(record(1));
    const QStringList &told = frontEnd.told;
    EXPECT_EQ(told.count("inhibit"), 1);
    EXPECT_EQ(told.count("release"), 1);
    EXPECT_LT(told.indexOf("inhibit"), told.indexOf("beginProgress"));
    EXPECT_GT(told.indexOf("release"), told.indexOf("beginProgress"));
    EXPECT_EQ(frontEnd.recordedRegion, QRectF(0, 0, 320, 200));
}

} // namespace
} // namespace vornic
