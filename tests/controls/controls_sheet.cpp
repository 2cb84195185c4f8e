/// Paints every control in every state on one picture, at 1, 1.5 and 2 pixels a point.
/// Arguments: the picture's file.

#include "controls/VNCheckCell.h"
#include "controls/VNColorWell.h"
#include "controls/VNComboBoxCell.h"
#include "controls/VNComboboxView.h"
#include "controls/VNDragDropImageView.h"
#include "controls/VNRadioCell.h"
#include "controls/VNSliderCell.h"
#include "controls/VNStepperCell.h"
#include "controls/VNTextFieldCell.h"
#include "controls/level_meter.h"
#include "controls/number_field.h"
#include "controls/push_button.h"
#include "controls/record_button.h"
#include "controls/skin_colors.h"
#include "controls/window_background.h"

#include <QApplication>
#include <QCursor>
#include <QDropEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vornic {
namespace {

enum class State { Normal, Focused, Pressed, Hovered, Disabled };

struct Column {
    QString title;
    State state;
};

const std::vector<Column> columns {
    { QStringLiteral("Normal"), State::Normal },
    { QStringLiteral("Keyboard focus"), State::Focused },
    { QStringLiteral("Under the mouse"), State::Hovered },
    { QStringLiteral("Mouse button down"), State::Pressed },
    { QStringLiteral("Disabled"), State::Disabled },
};

using Maker = std::function<QWidget *(QWidget *)>;

struct Row {
    QString title;
    Maker make;
};

/// A picture with a hole, so that what is behind shows.
std::shared_ptr<QImage> logo()
{
    auto image = std::make_shared<QImage>(160, 120, QImage::Format_ARGB32_Premultiplied);
    image->fill(Qt::transparent);
    QPainter painter(image.get());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(240, 150, 40));
    painter.drawEllipse(10, 10, 100, 100);
    painter.setBrush(QColor(40, 120, 220));
    painter.drawRoundedRect(70, 40, 80, 70, 12, 12);
    return image;
}

QWidget *check(QWidget *parent, const QString &title, Qt::CheckState state)
{
    auto *cell = new VNCheckCell(title, parent);
    cell->setTristate(state == Qt::PartiallyChecked);
    cell->setCheckState(state);
    return cell;
}

QWidget *radio(QWidget *parent, const QString &title, bool checked)
{
    auto *cell = new VNRadioCell(title, parent);
    cell->setAutoExclusive(false);
    cell->setChecked(checked);
    return cell;
}

QWidget *slider(QWidget *parent, int value)
{
    auto *cell = new VNSliderCell(parent);
    cell->setRange(0, 100);
    cell->setValue(value);
    return cell;
}

/// \a peak as a share of the loudest that there is, after a louder one a second ago; below 0: nobody listens.
QWidget *meter(QWidget *parent, double peak)
{
    auto *cell = new LevelMeter(parent);
    cell->setFixedWidth(140);
    cell->setListening(peak >= 0);
    if (peak > 0) {
        cell->addPeak(std::min(2 * peak, 1.0));
        cell->advance(1);
        cell->addPeak(peak);
        cell->advance(0.05);
    }
    return cell;
}

QWidget *field(QWidget *parent, const QString &text)
{
    auto *cell = new VNTextFieldCell(parent);
    cell->setText(text);
    cell->setPlaceholderText(QStringLiteral("Text of the logo"));
    return cell;
}

QWidget *number(QWidget *parent)
{
    auto *control = new NumberField(parent);
    control->setDecimals(0);
    control->setRange(-10000, 10000);
    control->setValue(1920);
    return control;
}

QWidget *push(QWidget *parent, const QString &text, bool isDefault, const QIcon &icon = {})
{
    auto *button = new PushButton(text, parent);
    button->setAutoDefault(false);
    button->setDefault(isDefault);
    button->setIcon(icon);
    button->setIconSize({ 18, 18 });
    return button;
}

QWidget *combo(QWidget *parent, bool editable)
{
    auto *cell = new VNComboBoxCell(parent);
    cell->setEditable(editable);
    cell->addItems({ QStringLiteral("Lossless"), QStringLiteral("Small file") });
    return cell;
}

QWidget *list(QWidget *parent, const QString &title)
{
    auto *view = new VNComboboxView(parent);
    view->addMenuItem(title);
    view->setIndexOfSelected(title.isEmpty() ? -1 : 0);
    return view;
}

QWidget *well(QWidget *parent, const QColor &color)
{
    auto *view = new VNColorWell(parent);
    view->setColor(color);
    return view;
}

QWidget *picture(QWidget *parent, bool empty)
{
    auto *view = new VNDragDropImageView(parent);
    view->setPlaceholderText(QStringLiteral("Drop a picture here"));
    if (!empty)
        view->setImage(logo());
    return view;
}

std::vector<Row> rows()
{
    return {
        { QStringLiteral("VNCheckCell"),
          [](QWidget *p) { return check(p, QStringLiteral("Text logo"), Qt::Checked); } },
        { {}, [](QWidget *p) { return check(p, QStringLiteral("Picture logo"), Qt::Unchecked); } },
        { {},
          [](QWidget *p) {
              return check(p, QStringLiteral("Mixed, with a title too long"), Qt::PartiallyChecked);
          } },
        { QStringLiteral("VNRadioCell"),
          [](QWidget *p) { return radio(p, QStringLiteral("Full display"), true); } },
        { {}, [](QWidget *p) { return radio(p, QStringLiteral("Selected rectangle"), false); } },
        { QStringLiteral("VNSliderCell"), [](QWidget *p) { return slider(p, 0); } },
        { {}, [](QWidget *p) { return slider(p, 40); } },
        { {}, [](QWidget *p) { return slider(p, 100); } },
        { QStringLiteral("LevelMeter: nobody listens"), [](QWidget *p) { return meter(p, -1); } },
        { QStringLiteral("silent"), [](QWidget *p) { return meter(p, 0); } },
        { QStringLiteral("speaking"), [](QWidget *p) { return meter(p, 0.1); } },
        { QStringLiteral("loud"), [](QWidget *p) { return meter(p, 0.4); } },
        { QStringLiteral("clipping"), [](QWidget *p) { return meter(p, 0.8); } },
        { QStringLiteral("VNTextFieldCell"),
          [](QWidget *p) { return field(p, QStringLiteral("Made with Vornic")); } },
        { {}, [](QWidget *p) { return field(p, QString()); } },
        { QStringLiteral("NumberField"), number },
        { QStringLiteral("VNStepperCell"), [](QWidget *p) { return new VNStepperCell(p); } },
        { QStringLiteral("VNComboBoxCell"), [](QWidget *p) { return combo(p, false); } },
        { QStringLiteral("editable"), [](QWidget *p) { return combo(p, true); } },
        { QStringLiteral("VNComboboxView"), [](QWidget *p) { return list(p, QStringLiteral("High")); } },
        { {}, [](QWidget *p) { return list(p, QStringLiteral("Built-in Audio Analog Stereo")); } },
        { QStringLiteral("VNColorWell"), [](QWidget *p) { return well(p, Qt::white); } },
        { {}, [](QWidget *p) { return well(p, QColor(220, 60, 50)); } },
        { {}, [](QWidget *p) { return well(p, Qt::black); } },
        { QStringLiteral("PushButton"),
          [](QWidget *p) { return push(p, QStringLiteral("Choose…"), false); } },
        { QStringLiteral("default"), [](QWidget *p) { return push(p, QStringLiteral("Record"), true); } },
        { QStringLiteral("with a picture"),
          [](QWidget *p) {
              return push(
                  p, QStringLiteral("0:01:23"), false, QIcon(QStringLiteral(":/skin/ministopRecorder1.png")));
          } },
        { QStringLiteral("RecordButton"),
          [](QWidget *p) { return new RecordButton(QStringLiteral("Record"), p); } },
        { QStringLiteral("VNDragDropImageView"), [](QWidget *p) { return picture(p, false); } },
        { {}, [](QWidget *p) { return picture(p, true); } },
    };
}

/// All controls, a row each, in as many columns as there are states.
class Sheet : public WindowBackground
{
public:
    Sheet()
    {
        auto *layout = new QGridLayout(this);
        layout->setContentsMargins(20, 16, 20, 16);
        layout->setHorizontalSpacing(24);
        for (std::size_t column = 0; column < columns.size(); ++column)
            layout->addWidget(new QLabel(columns[column].title, this), 0, static_cast<int>(column) + 1);
        for (const Row &row : rows())
            add(*layout, row);
        setFocusPolicy(Qt::StrongFocus);
    }

    /// The sheet at \a ratio pixels a point.
    QImage picture(double ratio)
    {
        QImage page((QSizeF(size()) * ratio).toSize(), QImage::Format_RGB32);
        page.setDevicePixelRatio(ratio);
        setFocus();
        QCursor::setPos(0, 0);
        render(&page);
        for (const auto &[control, state] : m_controls)
            if (state != State::Normal && state != State::Disabled)
                shoot(page, *control, state);
        return page;
    }

private:
    void add(QGridLayout &layout, const Row &row)
    {
        const int line = layout.rowCount();
        layout.addWidget(new QLabel(row.title, this), line, 0);
        for (std::size_t column = 0; column < columns.size(); ++column) {
            QWidget *control = row.make(this);
            control->setEnabled(columns[column].state != State::Disabled);
            const bool isFixed = control->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed
                || control->minimumWidth() == control->maximumWidth();
            if (!isFixed)
                control->setFixedWidth(170);
            layout.addWidget(control, line, static_cast<int>(column) + 1, Qt::AlignLeft);
            m_controls.emplace_back(control, columns[column].state);
        }
    }

    void shoot(QImage &page, QWidget &control, State state)
    {
        if (state == State::Focused)
            control.setFocus(Qt::TabFocusReason);
        if (state == State::Hovered || state == State::Pressed)
            hover(control);
        auto *button = qobject_cast<QPushButton *>(&control);
        if (button)
            button->setDown(state == State::Pressed);
        if (state == State::Pressed)
            QTest::mousePress(&m_elsewhere, Qt::LeftButton);
        render(&page, control.pos(), QRegion(control.geometry()));
        if (state == State::Pressed)
            QTest::mouseRelease(&m_elsewhere, Qt::LeftButton);
        control.setAttribute(Qt::WA_UnderMouse, false);
        setFocus();
    }

    static void hover(QWidget &control)
    {
        QCursor::setPos(control.mapToGlobal(QPoint(control.width() - 14, control.height() / 2)));
        control.setAttribute(Qt::WA_UnderMouse);
        auto *view = qobject_cast<VNDragDropImageView *>(&control);
        if (!view)
            return;
        QMimeData data;
        data.setImageData(*logo());
        const QDropEvent drag({}, Qt::CopyAction, &data, Qt::NoButton, Qt::NoModifier);
        static_cast<void>(view->draggingEntered(drag));
    }

    QWidget m_elsewhere;
    std::vector<std::pair<QWidget *, State>> m_controls;
};

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 2)
        return 2;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    QApplication::setFont(font);
    vornic::Sheet sheet;
    sheet.show();
    sheet.activateWindow();
    QApplication::processEvents();

    const QImage once = sheet.picture(1);
    const QImage between = sheet.picture(1.5);
    const QImage twice = sheet.picture(2);
    QImage all(once.width() + between.width(), between.height() + twice.height(), QImage::Format_RGB32);
    all.fill(vornic::skin::promptBottom());
    QPainter painter(&all);
    const auto place = [&](QImage picture, int x, int y) {
        picture.setDevicePixelRatio(1);
        painter.drawImage(x, y, picture);
    };
    place(once, 0, 0);
    place(between, once.width(), 0);
    place(twice, 0, between.height());
    painter.end();
    return all.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
