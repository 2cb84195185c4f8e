#include "contrast.h"
#include "control_pictures.h"
#include "controls/VNCheckCell.h"
#include "controls/VNColorWell.h"
#include "controls/VNComboBoxCell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNDragDropImageView.h"
#include "controls/VNRadioCell.h"
#include "controls/VNSliderCell.h"
#include "controls/VNTextFieldCell.h"
#include "controls/push_button.h"
#include "controls/record_button.h"
#include "controls/skin_colors.h"
#include "controls/window_background.h"

#include <QLabel>

#include <cstdio>
#include <memory>

namespace vornic {
namespace {

constexpr QSize windowSize(320, 400);
/// Near the upper edge, where the background is lightest.
constexpr QRect place(40, 4, 160, 28);
/// Every pixel of this letter has the colour of the text.
const QString blocks(3, QChar(0x2588));

/// Tells of a figure on the way.
double told(const char *what, double ratio, double figure)
{
    std::printf("  %-44s at %.1fx  %5.2f : 1\n", what, ratio, figure);
    return figure;
}

/// A control on the background of a window, as it is seen.
class Stage
{
public:
    explicit Stage(double ratio)
        : m_ratio(ratio)
    {
        m_window->resize(windowSize);
    }

    template<typename Control>
    Control &make()
    {
        auto *control = new Control(m_window.get());
        control->setGeometry(QRect(place.topLeft(), QSize(place.width(), control->sizeHint().height())));
        return *control;
    }

    [[nodiscard]] QImage picture() const
    {
        QImage image((QSizeF(windowSize) * m_ratio).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(m_ratio);
        m_window->render(&image);
        return image;
    }

    /// Between the brightest pixel in \a text and the brightest in \a beside, a part of the same background without
    /// text.
    [[nodiscard]] double textContrast(const QRect &text, const QRect &beside) const
    {
        const QImage image = picture();
        return contrast(brightest(image, text), brightest(image, beside));
    }

    /// Between the background beside \a control and what stands out most in the first three points of it: the least
    /// of all four sides.
    [[nodiscard]] double edgeContrast(const QRect &control) const
    {
        const QImage image = picture();
        const int y = control.center().y();
        return std::min({ edgeContrastUpAndDown(control),
                          edge(image, { control.left(), y }, { 1, 0 }),
                          edge(image, { control.right() + 1, y }, { -1, 0 }) });
    }
    /// The same of the upper and the lower side only.
    [[nodiscard]] double edgeContrastUpAndDown(const QRect &control) const
    {
        const QImage image = picture();
        const int x = control.center().x();
        return std::min(edge(image, { x, control.top() }, { 0, 1 }),
                        edge(image, { x, control.bottom() + 1 }, { 0, -1 }));
    }

private:
    /// \a start: a point on the control's edge; \a inwards: the direction into it.
    [[nodiscard]] double edge(const QImage &image, QPoint start, QPoint inwards) const
    {
        const QPoint first = (QPointF(start) * m_ratio).toPoint()
            - (inwards.x() + inwards.y() < 0 ? QPoint(1, 1) : QPoint());
        const QColor outside = image.pixelColor(first - inwards * 3);
        double most = 1;
        for (int step = 0; step < qRound(3 * m_ratio); ++step)
            most = std::max(most, contrast(image.pixelColor(first + inwards * step), outside));
        return most;
    }

    [[nodiscard]] QColor brightest(const QImage &image, const QRect &rectangle) const
    {
        const QRect pixels
            = QRectF(QPointF(rectangle.topLeft()) * m_ratio, QSizeF(rectangle.size()) * m_ratio)
                  .toAlignedRect();
        QColor found = Qt::black;
        for (int y = pixels.top(); y <= pixels.bottom(); ++y)
            for (int x = pixels.left(); x <= pixels.right(); ++x)
                if (luminance(image.pixelColor(x, y)) > luminance(found))
                    found = image.pixelColor(x, y);
        return found;
    }

    double m_ratio;
    std::unique_ptr<QWidget> m_window { std::make_unique<WindowBackground>() };
};

class Contrast : public testing::TestWithParam<double>
{
protected:
    /// What has its text at the left, from \a x on.
    double textFrom(int x, const char *what)
    {
        const QRect text(place.x() + x, place.y() + 8, 12, 10);
        return told(what, GetParam(), stage.textContrast(text, text.translated(90, 0)));
    }
    double edgeOf(const QRect &control, const char *what)
    {
        return told(what, GetParam(), stage.edgeContrast(control));
    }
    /// What has its text in the middle.
    double textOf(const QPushButton &button, const char *what)
    {
        const QRect frame = button.geometry();
        const QRect middle(frame.center().x() - 2, frame.center().y() - 4, 12, 8);
        return told(what,
                    GetParam(),
                    stage.textContrast(middle, QRect(frame.right() - 14, middle.y(), 8, middle.height())));
    }

    Stage stage { GetParam() };
};

constexpr double text = 4.5;
constexpr double edge = 3;

TEST_P(Contrast, OfLabels)
{
    auto &label = stage.make<QLabel>();
    label.setText(blocks);
    label.resize(place.size());
    EXPECT_GE(textFrom(0, "label"), text);
}

TEST_P(Contrast, OfCheckBoxesAndRadioButtons)
{
    auto &check = stage.make<VNCheckCell>();
    check.resize(place.size());
    check.setText(blocks);
    EXPECT_GE(textFrom(20, "title of a check box"), text);
    const QRect checkPicture = VNCheckCell::calcImagePosition(check.geometry()).toRect();
    EXPECT_GE(edgeOf(checkPicture, "check box, off"), edge);
    check.setChecked(true);
    EXPECT_GE(edgeOf(checkPicture, "check box, on"), edge);
    check.hide();
    auto &radio = stage.make<VNRadioCell>();
    radio.resize(place.size());
    radio.setText(blocks);
    EXPECT_GE(textFrom(22, "title of a radio button"), text);
    const QRect radioPicture = VNRadioCell::calcImagePosition(radio.geometry()).toRect();
    EXPECT_GE(edgeOf(radioPicture, "radio button, off"), edge);
    radio.setChecked(true);
    EXPECT_GE(edgeOf(radioPicture, "radio button, on"), edge);
}

TEST_P(Contrast, OfTextFields)
{
    auto &field = stage.make<VNTextFieldCell>();
    EXPECT_GE(edgeOf(field.geometry(), "text field"), edge);
    field.setPlaceholderText(blocks);
    EXPECT_GE(textFrom(9, "hint of a text field"), text);
    field.setText(blocks);
    EXPECT_GE(textFrom(9, "text field, text"), text);
    field.setEnabled(false);
    EXPECT_GE(textFrom(9, "text field, disabled"), text);
}

TEST_P(Contrast, OfLists)
{
    auto &view = stage.make<VNComboboxView>();
    view.addMenuItem(blocks);
    view.setIndexOfSelected(0);
    EXPECT_GE(edgeOf(view.geometry(), "list view"), edge);
    EXPECT_GE(textFrom(9, "list view, title"), text);
    view.setEnabled(false);
    EXPECT_GE(textFrom(9, "list view, disabled"), text);
    view.hide();
    auto &cell = stage.make<VNComboBoxCell>();
    cell.addItem(blocks);
    EXPECT_GE(edgeOf(cell.geometry(), "combo box"), edge);
    EXPECT_GE(textFrom(9, "combo box, text"), text);
}

TEST_P(Contrast, OfSlidersAndWells)
{
    auto &slider = stage.make<VNSliderCell>();
    const auto track = [&slider] {
        const QRect frame = slider.geometry();
        return QRect(frame.x(), frame.y() + (frame.height() - 5) / 2, frame.width(), 5);
    };
    slider.setGeometry(QRect(place.topLeft(), QSize(place.width(), 21)));
    slider.setValueRange(0, 1, 1);
    slider.setDoubleValue(0);
    const QRect rightHalf = track().adjusted(60, 0, 0, 0);
    EXPECT_GE(told("slider's track", GetParam(), stage.edgeContrastUpAndDown(rightHalf)), edge);
    slider.setDoubleValue(1);
    EXPECT_GE(told("slider's filled track",
                   GetParam(),
                   stage.edgeContrastUpAndDown(track().adjusted(0, 0, -60, 0))),
              edge);
    slider.hide();
    auto &imageWell = stage.make<VNDragDropImageView>();
    EXPECT_GE(edgeOf(imageWell.geometry(), "image well"), edge);
    imageWell.hide();
    auto &colorWell = stage.make<VNColorWell>();
    EXPECT_GE(edgeOf(colorWell.geometry(), "colour well"), edge);
}

TEST_P(Contrast, OfButtons)
{
    auto &push = stage.make<PushButton>();
    push.setText(blocks);
    EXPECT_GE(textOf(push, "push button"), text);
    push.setDefault(true);
    EXPECT_GE(textOf(push, "default button"), text);
    push.hide();
    auto &record = stage.make<RecordButton>();
    record.setText(blocks);
    EXPECT_GE(textOf(record, "record button"), text);
}

TEST_P(Contrast, OfDisabledValuesIsLessThanThatOfLabels)
{
    auto &label = stage.make<QLabel>();
    label.setText(blocks);
    label.resize(place.size());
    const double ofLabel = textFrom(0, "label");
    label.hide();
    auto &field = stage.make<VNTextFieldCell>();
    field.setText(blocks);
    field.setEnabled(false);
    EXPECT_LT(textFrom(9, "text field, disabled"), ofLabel);
    field.hide();
    auto &view = stage.make<VNComboboxView>();
    view.addMenuItem(blocks);
    view.setIndexOfSelected(0);
    view.setEnabled(false);
    EXPECT_LT(textFrom(9, "list view, disabled"), ofLabel);
}

INSTANTIATE_TEST_SUITE_P(Ratios, Contrast, testing::Values(1.0, 1.5, 2.0));

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runControlTests(argc, argv);
}
