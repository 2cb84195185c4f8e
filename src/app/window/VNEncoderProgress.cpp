#include "app/window/VNEncoderProgress.h"

#include "app/session/time_text.h"
#include "app/window/sheet.h"

#include <QDialog>
#include <QKeyEvent>
#include <QLocale>

#include <ui_VNEncoderProgress.h>

namespace vornic {

namespace {

/// Keeps the sheet that it watches open until the movie is written: neither Escape nor the window manager closes
/// it.
class CloseBlocker : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Close) {
            event->ignore();
            return true;
        }
        if (event->type() == QEvent::KeyPress
            && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Cancel))
            return true;
        return QObject::eventFilter(watched, event);
    }
};

/// Minimises a sheet and the window that it stands on together, whichever of them is, and brings them back together.
class MinimisedTogether : public QObject
{
public:
    /// Ends with \a sheet.
    MinimisedTogether(QWidget *sheet, QWidget *window)
        : QObject(sheet)
        , m_sheet(sheet)
        , m_window(window)
    {
        m_sheet->installEventFilter(this);
        m_window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::WindowStateChange) {
            const QWidget *changed = watched == m_sheet ? m_sheet : m_window;
            QWidget *other = watched == m_sheet ? m_window : m_sheet;
            if (other->isMinimized() != changed->isMinimized())
                other->setWindowState(other->windowState() ^ Qt::WindowMinimized);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget *m_sheet;
    QWidget *m_window;
};

} // namespace

VNEncoderProgress &VNEncoderProgress::shareEncoderProgress()
{
    static auto *const shared = new VNEncoderProgress;
    return *shared;
}

void VNEncoderProgress::beginSheet(QWidget *window, std::uint64_t frames, std::function<void()> later)
{
    endSheet();
    m_frames = frames;
    m_sinceBegin.start();
    m_window = makeSheet<Ui::VNEncoderProgress>(window, [&](const Ui::VNEncoderProgress &ui) {
        m_bar = ui.percentBar;
        m_percentLabel = ui.percentLabel;
        m_speedLabel = ui.speedLabel;
        m_timeLeftLabel = ui.timeLeftLabel;
        connect(
            ui.minimiseButton, &QAbstractButton::clicked, this, [this] { mainWindow()->showMinimized(); });
        ui.laterButton->setVisible(later != nullptr);
        connect(ui.laterButton,
                &QAbstractButton::clicked,
                ui.laterButton,
                [button = ui.laterButton, later = std::move(later)] {
                    button->setEnabled(false); // the frame that is under way is finished first
                    later();
                });
    });
    m_window->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                             | Qt::WindowMinimizeButtonHint);
    m_window->installEventFilter(new CloseBlocker(m_window));
    m_parent = window;
    if (window)
        new MinimisedTogether(m_window, window);
    m_title = mainWindow()->windowTitle();
    // Not to its button: what is typed when a recording ends was meant for another window.
    m_window->setFocusPolicy(Qt::StrongFocus);
    m_window->setFocus();
    setPercent(0);
    m_window->show();
}

void VNEncoderProgress::endSheet()
{
    if (m_window)
        mainWindow()->setWindowTitle(m_title);
    delete m_window.data();
}

QWidget *VNEncoderProgress::mainWindow() const
{
    return m_parent ? m_parent->window() : m_window;
}

void VNEncoderProgress::setPercent(double percent)
{
    m_percent = percent;
    if (m_window) {
        showFigures();
        showInTitle();
    }
    emit percentChanged();
}

void VNEncoderProgress::showInTitle()
{
    mainWindow()->setWindowTitle(tr("%1 % – %2").arg(static_cast<int>(m_percent)).arg(m_title));
}

void VNEncoderProgress::showFigures()
{
    m_bar->setValue(static_cast<int>(m_percent));
    m_percentLabel->setText(tr("%1 %").arg(static_cast<int>(m_percent)));
    const double seconds = static_cast<double>(m_sinceBegin.elapsed()) / 1000;
    // Before that, chance decides.
    const bool isKnown = m_percent >= 1 && seconds >= 0.3;
    const double done = m_percent / 100;
    m_speedLabel->setText(
        isKnown ? tr("%1 frames a second")
                      .arg(QLocale().toString(static_cast<double>(m_frames) * done / seconds, 'f', 0))
                : QString());
    m_timeLeftLabel->setText(isKnown ? tr("%1 left").arg(minutesAndSeconds(seconds * (1 - done) / done))
                                     : tr("Working…"));
}

} // namespace vornic
