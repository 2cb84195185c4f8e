#include "base/keyed_archive.h"
#include "display/fake_display.h"
#include "geometry/y_up.h"
#include "gui_main.h"
#include "hostile_archives.h"
#include "options/VNOption.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <memory>

namespace vornic {
namespace {

using test::HostileArchive;

/// What the field for the text takes.
constexpr qsizetype longestText = 32767;

class HostileArchives : public testing::TestWithParam<HostileArchive>
{
protected:
    HostileArchives() { setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900))); }
    ~HostileArchives() override { setMainDisplay(nullptr); }

    static std::unique_ptr<VNOption> decoded(const QByteArray &bytes)
    {
        const auto coder = KeyedUnarchiver::create(bytes);
        return coder ? VNOption::createWithCoder(*coder) : nullptr;
    }
};

/// All that is asked of the options while nobody records.
void use(VNOption &options)
{
    const VNLogoContext &logo = *options.logoContext();
    static_cast<void>(VNOption::convertScreenRectToQuartz(options.selectedRect()));
    static_cast<void>(logo.getLogoRect());
    for (const QRectF &bound : { QRectF(0, 0, 320, 200), options.selectedRect() })
        static_cast<void>(logo.decoratedRect(bound, 1));
    EXPECT_EQ(logo.decorateCGImage(QImage(320, 200, QImage::Format_RGB32)).size(), QSize(320, 200));
    QImage surface(64, 48, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&surface);
    flipPainter(painter, surface.height());
    logo.decorateImage(painter, options.selectedRect(), 1);
    logo.decorateImage(painter, QRectF(surface.rect()), 1e6);
}

TEST_P(HostileArchives, AreUsedAndStoredAgain)
{
    const auto options = decoded(GetParam().bytes);
    ASSERT_TRUE(options);
    const VNLogoContext &logo = *options->logoContext();
    EXPECT_LE(logo.LogoText().size(), longestText);
    EXPECT_LE(logo.getNSImage().sizeInBytes(), 64 * 48 * 4)
        << "nothing is taken for pixels that are not there";
    use(*options);
    const QByteArray archive = archivedData(*options);
    EXPECT_LT(archive.size(), GetParam().bytes.size() + 1000);
    const auto again = decoded(archive);
    ASSERT_TRUE(again);
    EXPECT_EQ(archivedData(*again), archive);
    options->setWidth(options->width());
    options->setHeight(options->height());
    options->setOffsetX(options->offsetX());
    options->setOffsetY(options->offsetY());
    use(*options);
}

INSTANTIATE_TEST_SUITE_P(All,
                         HostileArchives,
                         testing::ValuesIn(test::hostileArchives()),
                         [](const auto &row) {
                             QString name = QString::fromLatin1(row.param.name);
                             for (QChar &character : name)
                                 character = character.isLetterOrNumber() ? character : QChar(u'_');
                             return name.replace('_', QString()).toStdString() + std::to_string(row.index);
                         });

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runTestsWithFonts(argc, argv);
}
