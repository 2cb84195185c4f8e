/// That no control cuts its text off at the size that it asks for, whatever the language and the scale.

#include "control_pictures.h"
#include "controls/VNCheckCell.h"
#include "controls/VNComboBoxCell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNRadioCell.h"
#include "controls/push_button.h"
#include "controls/record_button.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace vornic {
namespace {

struct Labelled {
    const char *name;
    std::function<std::unique_ptr<QWidget>(const QString &)> make;
};

template<typename Button>
std::unique_ptr<QWidget> button(const QString &text)
{
    return std::make_unique<Button>(text);
}

std::unique_ptr<QWidget> list(const QString &text)
{
    auto view = std::make_unique<VNComboboxView>();
    view->addMenuItem(text);
    view->setIndexOfSelected(0);
    return view;
}

std::unique_ptr<QWidget> combo(const QString &text)
{
    auto cell = std::make_unique<VNComboBoxCell>();
    cell->addItem(text);
    return cell;
}

const std::vector<Labelled> labelled {
    { "check box", button<VNCheckCell> },
    { "radio button", button<VNRadioCell> },
    { "push button", button<PushButton> },
    { "record button", button<RecordButton> },
    { "list", list },
    { "combo box", combo },
};

const QStringList languages {
    QStringLiteral("OK"),
    QStringLiteral("Record the &sound, too"),
    QStringLiteral("Ausgewählte Bildschirmfläche ÄÖÜ"),
    QStringLiteral("[Ŕéçôŕð ţĥé ŵĥôļé ðîšþļåý one two]"),
    QStringLiteral("Записывать весь экран"),
    QStringLiteral("i i i i i i i i i i i l l l l l"),
};

QImage paintedAt(QWidget &control, double ratio)
{
    QImage image((QSizeF(control.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(garish);
    control.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// How many pixels wide \a text is drawn when the control is \a more points wider than it asks for.
int drawnWidth(const Labelled &control, const QString &text, const QFont &font, double ratio, int more)
{
    const auto with = control.make(text);
    const auto without = control.make(QString());
    with->setFont(font);
    without->setFont(font);
    with->resize(with->sizeHint() + QSize(more, 0));
    without->resize(with->size());
    const QImage image = paintedAt(*with, ratio);
    const QImage bare = paintedAt(*without, ratio);
    int first = image.width();
    int last = -1;
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (image.pixel(x, y) != bare.pixel(x, y)) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return last - first;
}

class Sizes : public testing::TestWithParam<double>
{
};

TEST_P(Sizes, NoTextIsCutOff)
{
    for (const Labelled &control : labelled)
        for (const QString &text : languages)
            for (const int pixels : { 11, 13, 17 }) {
                QFont font(QStringLiteral("DejaVu Sans"));
                font.setPixelSize(pixels);
                const int asAsked = drawnWidth(control, text, font, GetParam(), 0);
                const int withRoom = drawnWidth(control, text, font, GetParam(), 100);
                EXPECT_NEAR(asAsked, withRoom, 1)
                    << control.name << ", " << text.toStdString() << ", " << pixels;
            }
}

TEST_P(Sizes, NoTextIsCutOffAboveOrBelow)
{
    for (const Labelled &control : labelled) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(15);
        const auto widget = control.make(QStringLiteral("ÅÉgjpqy"));
        widget->setFont(font);
        EXPECT_GE(widget->sizeHint().height(), QFontMetrics(font).height() + 1) << control.name;
        EXPECT_GE(widget->minimumSizeHint().height(), QFontMetrics(font).height() + 1) << control.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Ratios, Sizes, testing::Values(1, 1.5, 2));

TEST(Sizes, ATitleThatChangesAsksForItsRoom)
{
    VNCheckCell check(QStringLiteral("On"));
    const int before = check.sizeHint().width();
    check.setText(QStringLiteral("Eingeschaltet"));
    EXPECT_GT(check.sizeHint().width(), before);
    QFont large = check.font();
    large.setPixelSize(30);
    check.setFont(large);
    EXPECT_GT(check.sizeHint().height(), 30);
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
