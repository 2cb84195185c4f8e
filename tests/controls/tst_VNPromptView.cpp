#include "contrast.h"
#include "control_pictures.h"
#include "controls/VNPromptView.h"
#include "controls/skin_colors.h"

#include <QLabel>

namespace vornic {
namespace {

class PromptView : public testing::TestWithParam<int>
{
};

TEST_P(PromptView, GetsDarkerDownwards)
{
    VNPromptView view;
    view.resize(40, 200);
    const QImage image = painted(view, GetParam());
    EXPECT_EQ(at(image, 20, 0), QColor(58, 58, 58));
    EXPECT_EQ(at(image, 20, 199), QColor(46, 46, 46));
    EXPECT_NEAR(at(image, 20, 100).red(), 52, 1);
    for (int y = 1; y < 200; ++y) {
        EXPECT_LE(at(image, 20, y).red(), at(image, 20, y - 1).red()) << y;
        EXPECT_EQ(at(image, 0, y), at(image, 39, y)) << y;
        EXPECT_EQ(at(image, 20, y).red(), at(image, 20, y).blue()) << y;
    }
}

INSTANTIATE_TEST_SUITE_P(Ratios, PromptView, testing::Values(1, 2));

TEST(PromptBackground, FillsTheRectangleAndNoMore)
{
    QImage image = blank({ 30, 30 }, 1);
    QPainter painter(&image);
    paintPromptBackground(painter, { 5, 10, 20, 15 });
    painter.end();
    EXPECT_EQ(at(image, 5, 10), QColor(58, 58, 58));
    EXPECT_NE(at(image, 24, 24), garish);
    for (const QPoint outside : { QPoint(4, 15), QPoint(25, 15), QPoint(10, 9), QPoint(10, 25) })
        EXPECT_EQ(at(image, outside.x(), outside.y()), garish);
}

TEST(SkinPalette, LabelsOnThePromptViewCanBeRead)
{
    VNPromptView view;
    QLabel label(&view);
    EXPECT_EQ(label.palette().color(QPalette::WindowText), skin::label());
    const QPalette palette = skinPalette();
    EXPECT_GT(contrast(palette.color(QPalette::WindowText), skin::promptTop()), 4.5);
    EXPECT_GT(contrast(palette.color(QPalette::Link), skin::promptTop()), 4.5);
    EXPECT_GT(contrast(palette.color(QPalette::Text), palette.color(QPalette::Base)), 7);
    EXPECT_GT(contrast(palette.color(QPalette::ButtonText), palette.color(QPalette::Button)), 7);
    EXPECT_GT(contrast(palette.color(QPalette::PlaceholderText), palette.color(QPalette::Base)), 4.5);
    EXPECT_GT(contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)), 4.5);
    EXPECT_LT(contrast(palette.color(QPalette::Disabled, QPalette::WindowText), skin::promptTop()), 3)
        << "what cannot be used looks so";
}

TEST(SkinPalette, TextOnButtonsCanBeRead)
{
    for (const ButtonFace &face : { skin::face(),
                                    skin::faceOver(),
                                    skin::faceDown(),
                                    skin::defaultFace(),
                                    skin::defaultFaceOver(),
                                    skin::defaultFaceDown(),
                                    skin::recordFace(),
                                    skin::recordFaceOver(),
                                    skin::recordFaceDown() })
        for (const QColor &color : { face.top, face.bottom })
            EXPECT_GT(contrast(skin::value(), color), 4.5) << color.name().toStdString();
    EXPECT_GT(contrast(skin::focus(), skin::promptTop()), 3) << "the outline of the focus";
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
