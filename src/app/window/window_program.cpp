#include "app/window/window_program.h"

#include "app/session/level_watch.h"
#include "app/session/start_settings.h"
#include "app/session/stored_options.h"
#include "app/session/unix_signals.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/dialog_placement.h"
#include "app/window/help_document.h"
#include "app/window/recovery.h"
#include "app/window/recovery_process.h"
#include "app/window/window_placement.h"
#include "audio/audio_backend.h"
#include "base/log.h"
#include "base/native_path.h"
#include "desktop/notifier.h"
#include "desktop/single_instance.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"
#include "selection/region_selection.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QKeySequence>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <chrono>

namespace vornic {

namespace {

using namespace std::chrono_literals;

constexpr auto lookForWindow = 20ms;
constexpr auto maxWaitForWindow = 2s;

/// A key as its user reads it.
QString nativeText(const QString &portableText)
{
    return QKeySequence(portableText, QKeySequence::PortableText).toString(QKeySequence::NativeText);
}

/// What stands beneath the keys in the window because of the one that pauses.
QString pauseKeyNote(GlobalKey::Answer answer)
{
    switch (answer) {
    case GlobalKey::Answer::TakenByOther:
        return WindowProgram::tr("Another program has the key that pauses.");
    case GlobalKey::Answer::NoSuchKey:
        return WindowProgram::tr("The keyboard does not have the key that pauses.");
    case GlobalKey::Answer::NotOnThisDesktop:
        return WindowProgram::tr("Bind a desktop key to “vornic --pause”.");
    case GlobalKey::Answer::Heard:
    case GlobalKey::Answer::Asked:
    case GlobalKey::Answer::Declined:
    case GlobalKey::Answer::NotSet:
        break;
    }
    return {};
}

} // namespace

WindowProgram::WindowProgram(QApplication &application,
                             const UnixSignals &signalled,
                             SingleInstance &instance)
    : m_delegate(m_frontEnd.frontEnd())
    , m_overlay(VNRecorderWndCtrl::shareRecorderWndCtrl())
    , m_key(GlobalKey::create())
    , m_pauseKey(GlobalKey::createForMoment())
{
    launch();
    connect(&signalled, &UnixSignals::terminationAsked, this, &WindowProgram::endUnattended);
    connect(&signalled, &UnixSignals::leaveAsked, this, [this] {
        m_frontEnd.questions().end();
        session().leave();
    });
    connect(&signalled, &UnixSignals::pauseAsked, &session(), &RecordingSession::pauseOrResume);
    connect(&instance, &SingleInstance::activated, this, [this] { perform({}, {}); });
    connect(&instance,
            &SingleInstance::actionAsked,
            this,
            [this](const QString &action, const QString &file) { perform(action, pathFromFileUri(file)); });
    instance.setActionCheck([this](const QString &action) {
        const bool can = canPerform(action);
        // Whoever asked in a menu of the desktop reads no refusal, but what is in the way.
        if (!can && !session().isCapturing() && !m_frontEnd.questions().onlyTells())
            m_frontEnd.windows().bringMainWindowToFront();
        return can;
    });
    connect(m_key.get(), &GlobalKey::pressed, this, &WindowProgram::toggle);
    connect(m_key.get(), &GlobalKey::answered, this, &WindowProgram::keyAnswered);
    connect(m_pauseKey.get(), &GlobalKey::pressed, &session(), &RecordingSession::pauseOrResume);
    listenForKeys();
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
    m_levelWatch = std::make_unique<LevelWatch>(&mainAudioControl());
    m_window->setLevelWatch(m_levelWatch.get());
    m_frontEnd.setWindow(m_window.get(), [this] { m_delegate.stopRecord(); });
    m_recovery = std::make_unique<Recovery>(m_delegate, m_frontEnd.questions(), *m_window);
    m_frontEnd.progress().setPause([this] { session().pauseOrResume(); });
    m_frontEnd.movie().setLater([this] { session().later(); });
    m_frontEnd.movie().setKept([this] { m_recovery->recordingKept(); });
    m_overlay.window()->setWindowAbove(m_window.get());
    m_window->setFrameIsExact([this] { return m_overlay.window()->isExact(); });
    new DialogPlacement([this] { return recordedAreas(*m_delegate.options()); }, this);
    connectWindow();
}

void WindowProgram::connectWindow()
{
    MainWindow *const window = m_window.get();
    connect(window, &MainWindow::closed, &session(), &RecordingSession::terminate);
    connect(window, &MainWindow::selectOnScreenAsked, this, &WindowProgram::selectOnScreen);
    connect(window, &MainWindow::openAsked, this, [this](const QString &path) {
        m_frontEnd.desktop().open(path);
    });
    connect(window, &MainWindow::revealAsked, this, [this](const QString &path) {
        m_frontEnd.desktop().reveal(path);
    });
    for (const auto asked : { &MainWindow::openAsked, &MainWindow::revealAsked })
        connect(window, asked, this, [this] { m_frontEnd.windows().stepAside(); });
    connect(window, &MainWindow::shortcutChosen, this, [this](const QString &key) {
        start_settings::setShortcut(key);
        listenForKeys();
    });
    connect(window, &MainWindow::pauseShortcutChosen, this, [this](const QString &key) {
        start_settings::setPauseShortcut(key);
        listenForKeys();
    });
}

void WindowProgram::followSession(QApplication &application)
{
    connect(&session(),
            &RecordingSession::readyToTerminate,
            &application,
            &QCoreApplication::quit,
            Qt::QueuedConnection);
    // The session is about to end: the window goes on until it is told to end, as the user may think better of it, but
    // the options are kept now, and a recording that waits for an answer is not held up.
    connect(&application, &QGuiApplication::commitDataRequest, this, [this] {
        m_delegate.applicationWillTerminate();
        m_frontEnd.questions().dismiss();
    });
    application.installEventFilter(this);
}

/// Nobody is there to answer, or has the time: a signal came, or the session ends.
void WindowProgram::endUnattended()
{
    m_frontEnd.questions().end();
    session().terminate();
}

/// The end of the session comes as the application's own end does, which would ask while a recording runs.
bool WindowProgram::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != QCoreApplication::instance() || event->type() != QEvent::Quit || !m_delegate.isRecording())
        return QObject::eventFilter(watched, event);
    endUnattended();
    return true;
}

int WindowProgram::run(const QString &action, const QString &file)
{
    m_window->show();
    m_recovery->start();
    if (const QString reason = whyOptionsCannotBeStored(); !reason.isEmpty())
        m_window->showStatus(reason);
    if (!action.isEmpty())
        performOnceShown(action, file);
    const int status = QApplication::exec();
    return m_delegate.applicationWillTerminate() ? status : 1;
}

int WindowProgram::endWithoutDisplay()
{
    m_delegate.applicationWillTerminate();
    const QString id = session().leaveRecording();
    if (id.isEmpty()) {
        logMessage(tr("The display is gone."));
        return 1;
    }
    const QString title = tr("The display is gone");
    const QString whatNext = recoverAfterThisProcess(id)
        ? tr("The recording is kept, and its movie is being made.")
        : tr("The recording is kept, and its movie can be made at the next start.");
    logMessage(tr("%1. %2 (%3)").arg(title, whatNext, id));
    Notifier::showBeforeExit({ .title = title, .body = whatNext, .actionLabel = {}, .action = {} });
    return 1;
}

/// A window manager that does not know the window yet would not minimise it for the recording.
void WindowProgram::performOnceShown(const QString &action, const QString &file)
{
    auto *look = new QTimer(this);
    const QDeadlineTimer deadline(maxWaitForWindow);
    connect(look, &QTimer::timeout, this, [this, look, deadline, action, file] {
        if (!m_window->windowHandle()->isExposed() && !deadline.hasExpired())
            return;
        look->deleteLater();
        perform(action, file);
    });
    look->start(lookForWindow);
}

bool WindowProgram::canPerform(const QString &action) const
{
    const bool isCountingDown = m_frontEnd.questions().isCountingDown();
    if (action == QLatin1StringView(toggleAction))
        return canToggle();
    if (action == QLatin1StringView(stopAction))
        return session().isCapturing() || session().awaitsDisplay() || isCountingDown;
    if (action == QLatin1StringView(pauseAction))
        return session().mayPause();
    return canStart();
}

bool WindowProgram::canToggle() const
{
    return session().isCapturing() || session().awaitsDisplay() || m_frontEnd.questions().isCountingDown()
        || canStart();
}

bool WindowProgram::canStart() const
{
    return session().phase() == RecordingSession::Phase::Idle && !m_selection
        && m_frontEnd.questions().onlyTells();
}

/// What only tells something is not in the way: it is put aside, as it must not be in the movie.
void WindowProgram::start(const std::function<void()> &record)
{
    if (!canStart())
        return;
    m_frontEnd.questions().dismissTold([program = QPointer(this), record] {
        if (program && program->canStart())
            record();
    });
}

void WindowProgram::perform(const QString &action, const QString &file)
{
    if (action == QLatin1StringView(toggleAction)) {
        toggle();
        return;
    }
    if (action == QLatin1StringView(stopAction)) {
        m_frontEnd.questions().cancelCountdown();
        m_delegate.stopRecord();
        return;
    }
    if (action == QLatin1StringView(pauseAction)) {
        session().pauseOrResume();
        return;
    }
    if (session().isCapturing()) {
        // The window would be in the movie.
        m_frontEnd.progress().pointAtStopItem();
        return;
    }
    m_frontEnd.windows().bringMainWindowToFront();
    for (const char *recordAction : { recordFullAction, recordRectangleAction }) {
        if (action == QLatin1StringView(recordAction))
            start([this, recordAction, file] { m_window->record(recordAction == recordFullAction, file); });
    }
}

void WindowProgram::toggle()
{
    if (!canToggle())
        return;
    if (session().isCapturing() || session().awaitsDisplay())
        m_delegate.stopRecord();
    else if (m_frontEnd.questions().isCountingDown())
        m_frontEnd.questions().cancelCountdown();
    else
        start([this] { session().recordNow(); });
}

/// The first trouble is told. A key that is to do both does what the first one does.
void WindowProgram::listenForKeys()
{
    const QString key = start_settings::shortcut();
    const QString pauseKey = start_settings::pauseShortcut();
    const bool isSame = !key.isEmpty() && key == pauseKey;
    static_cast<void>(m_pauseKey->listenFor({}));
    const GlobalKey::Answer answer = m_key->listenFor(key);
    m_pauseKeyNote = isSame ? tr("Both keys are the same: it does not pause.")
                            : pauseKeyNote(m_pauseKey->listenFor(pauseKey));
    keyAnswered(answer);
}

void WindowProgram::keyAnswered(GlobalKey::Answer answer)
{
    // Or the desktop would ask its user at every start.
    if (answer == GlobalKey::Answer::Declined) {
        start_settings::setShortcut({});
        m_window->setShortcut({});
    }
    const QString note = keyNote(answer);
    m_window->setShortcutProblem(note.isEmpty() ? m_pauseKeyNote : note);
    const bool isHeard = answer == GlobalKey::Answer::Heard || answer == GlobalKey::Answer::Asked;
    const QString given = m_key->givenKey();
    VNHintWndCtroller::shareHintWndCtroller().setKey(
        isHeard && given.isEmpty() ? nativeText(start_settings::shortcut()) : given);
}

/// What stands beneath the key in the window.
QString WindowProgram::keyNote(GlobalKey::Answer answer) const
{
    switch (answer) {
    case GlobalKey::Answer::Asked:
        break;
    case GlobalKey::Answer::Heard:
        if (const QString given = m_key->givenKey();
            !given.isEmpty() && given != nativeText(start_settings::shortcut()))
            return tr("The desktop has this key for it: %1").arg(given);
        break;
    case GlobalKey::Answer::TakenByOther:
        return tr("Another program has this key.");
    case GlobalKey::Answer::NoSuchKey:
        return tr("The keyboard does not have this key.");
    case GlobalKey::Answer::NotOnThisDesktop:
        return tr("Bind a desktop key to “vornic --toggle”.");
    case GlobalKey::Answer::Declined:
        return tr("The desktop was not allowed to give the key.");
    case GlobalKey::Answer::NotSet:
        return tr("Choose its key in the desktop's settings.");
    }
    return {};
}

/// The windows go meanwhile, as they would be in the way of what is selected.
void WindowProgram::selectOnScreen()
{
    if (m_selection || m_delegate.isRecording())
        return;
    m_window->hide(); // and the overlay with it
    m_selection = std::make_unique<RegionSelection>(m_delegate.options()->selectedRect());
    connect(m_selection.get(), &RegionSelection::taken, this, [this](const QRectF &rectangle) {
        m_delegate.options()->setSelectedRect(rectangle);
        m_delegate.options()->setIsRecordFullScreen(false);
        endSelection();
    });
    connect(m_selection.get(), &RegionSelection::cancelled, this, &WindowProgram::endSelection);
    connect(m_selection.get(), &RegionSelection::displayNotShown, this, [this] {
        endSelection();
        m_window->showStatus(
            tr("The desktop does not show its screen for that; drag the frame, or type the numbers."));
    });
    m_selection->begin();
}

void WindowProgram::endSelection()
{
    m_selection.release()->deleteLater();
    m_window->show();
    m_window->keepOffRecorded();
    m_frontEnd.windows().bringMainWindowToFront();
}

} // namespace vornic
