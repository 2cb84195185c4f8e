#include "app/window/VNEncoderProgress.h"

#include "app/session/time_text.h"
#include "app/window/sheet.h"

#include <QDialog>
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
        if (event->type() == QEvent::KeyPress)
            return true;
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

VNEncoderProgress &VNEncoderProgress::shareEncoderProgress()
{
    static auto *const shared = new VNEncoderProgress;
    return *shared;
}

void VNEncoderProgress::beginSheet(QWidget *window, std::uint64_t frames)
{
    endSheet();
    m_frames = frames;
    m_sinceBegin.start();
    m_window = makeSheet<Ui::VNEncoderProgress>(window, [this](const Ui::VNEncoderProgress &ui) {
        m_bar = ui.percentBar;
        m_percentLabel = ui.percentLabel;
        m_speedLabel = ui.speedLabel;
        m_timeLeftLabel = ui.timeLeftLabel;
    });
    m_window->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    m_window->installEventFilter(new CloseBlocker(m_window));
    setPercent(0);
    m_window->show();
}

void VNEncoderProgress::endSheet()
{
    delete m_window.data();
}

void VNEncoderProgress::setPercent(double percent)
{
    m_percent = percent;
    if (m_window)
        showFigures();
    emit percentChanged();
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
