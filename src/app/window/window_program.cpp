#include "app/window/window_program.h"

#include "app/session/unix_signals.h"
#include "app/window/help_document.h"
#include "audio/audio_backend.h"
#include "base/log.h"
#include "base/main_queue.h"
#include "desktop/single_instance.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"

#include <QApplication>

namespace vornic {

WindowProgram::WindowProgram(QApplication &application,
                             const UnixSignals &signalled,
                             SingleInstance &instance)
    : m_delegate(m_frontEnd.frontEnd())
    , m_overlay(VNRecorderWndCtrl::shareRecorderWndCtrl())
{
    launch();
    connect(&signalled, &UnixSignals::terminationAsked, &m_delegate, &VornicAppDelegate::terminate);
    connect(&instance, &SingleInstance::activated, this, [this] { perform({}); });
    connect(&instance, &SingleInstance::actionAsked, this, &WindowProgram::perform);
    followSession(application);
}

WindowProgram::~WindowProgram()
{
    m_overlay.window()->orderOut();
    m_overlay.window()->setWindowAbove(nullptr);
}

void WindowProgram::launch()
{
    if (const QString reason = noAudioReason(); !reason.isEmpty())
        logMessage(reason);
    m_delegate.setAudioControl(&mainAudioControl());
    m_delegate.setRecorderWndCtrl(&m_overlay);
    m_delegate.setHelpDocument(helpDocument());
    m_delegate.applicationDidFinishLaunching();
    m_window = std::make_unique<MainWindow>(m_delegate);
    m_frontEnd.setWindow(m_window.get(), [this] { m_delegate.stopRecord(); });
    m_overlay.window()->setWindowAbove(m_window.get());
    connect(m_window.get(), &MainWindow::closed, &m_delegate, &VornicAppDelegate::terminate);
}

void WindowProgram::followSession(QApplication &application)
{
    connect(&m_delegate,
            &VornicAppDelegate::readyToTerminate,
            &application,
            &QCoreApplication::quit,
            Qt::QueuedConnection);
    // The session ends: the window goes on until it is told to end, but the options are kept now.
    connect(&application, &QGuiApplication::commitDataRequest, &m_delegate, &VornicAppDelegate::saveOptions);
}

int WindowProgram::run(const QString &action)
{
    m_window->show();
    if (!action.isEmpty())
        main_queue::async([this, action] { perform(action); });
    const int status = QApplication::exec();
    m_delegate.applicationWillTerminate();
    return status;
}

void WindowProgram::perform(const QString &action)
{
    if (action == QLatin1StringView(stopAction)) {
        m_delegate.stopRecord();
        return;
    }
    m_frontEnd.progress().bringMainWindowToFront();
    for (const char *recordAction : { recordFullAction, recordRectangleAction }) {
        if (action == QLatin1StringView(recordAction))
            m_window->record(recordAction == recordFullAction);
    }
}

} // namespace vornic
