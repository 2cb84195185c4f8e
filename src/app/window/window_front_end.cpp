#include "app/window/window_front_end.h"

#include "app/VornicAppDelegate.h"
#include "app/session/time_text.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNEncoderProgress.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/main_window.h"
#include "app/window/stop_item.h"
#include "desktop/idle_inhibitor.h"
#include "desktop/notifier.h"
#include "desktop/reveal.h"
#include "display/main_display.h"
#include "geometry/toolkit_scale.h"
#include "overlay/overlay_geometry.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QGuiApplication>
#include <QImageReader>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace vornic {

namespace {

/// A question, or something to know: in bold what it is about, and more beneath.
void fill(QMessageBox &box, const QString &message, const QString &informativeText)
{
    box.setWindowTitle(QStringLiteral("Vornic"));
    box.setTextFormat(Qt::RichText);
    box.setText(QStringLiteral("<b>%1</b>").arg(message.toHtmlEscaped()));
    box.setInformativeText(informativeText.toHtmlEscaped());
    // The toolkit makes such a box as narrow as its title.
    box.setStyleSheet(QStringLiteral("QLabel#qt_msgbox_informativelabel { min-width: 24em; }"));
}

} // namespace

WindowFrontEnd::WindowFrontEnd()
    : m_notifier(std::make_unique<Notifier>())
    , m_movieFolder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation))
{
    if (!QFileInfo(m_movieFolder).isDir())
        m_movieFolder = QDir::homePath();
}

WindowFrontEnd::~WindowFrontEnd() = default;

void WindowFrontEnd::setWindow(MainWindow *window, VornicAppDelegate *delegate)
{
    m_window = window;
    m_delegate = delegate;
}

/// The main window, or none once it is closed: what is asked then stands alone.
QWidget *WindowFrontEnd::visibleWindow() const
{
    return m_window && m_window->isVisible() ? m_window : nullptr;
}

void WindowFrontEnd::askAboutFreeSpace(std::function<void(bool)> answer)
{
    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(visibleWindow(), std::move(answer));
}

/// Runs \a panel as a sheet; it ends with its answer.
void WindowFrontEnd::runPanel(QFileDialog &panel, std::function<void(std::optional<QString>)> answer)
{
    panel.setAttribute(Qt::WA_DeleteOnClose);
    panel.setWindowModality(Qt::WindowModal);
    QObject::connect(
        &panel, &QFileDialog::finished, &panel, [&panel, answer = std::move(answer)](int result) {
            const QStringList files = panel.selectedFiles();
            const bool chosen = result == QDialog::Accepted && !files.isEmpty();
            answer(chosen ? std::optional(files.first()) : std::nullopt);
        });
    panel.open();
}

void WindowFrontEnd::runSavePanel(const QString &name,
                                  const QString &type,
                                  std::function<void(std::optional<QString>)> answer)
{
    auto *panel = new QFileDialog(visibleWindow(), tr("Save the recording as"));
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilter(tr("Movies (*.%1)").arg(type));
    panel->setDefaultSuffix(type);
    panel->setDirectory(m_movieFolder);
    panel->selectFile(name);
    runPanel(*panel, [this, answer = std::move(answer)](const std::optional<QString> &path) {
        if (path)
            m_movieFolder = QFileInfo(*path).path();
        answer(path);
    });
}

void WindowFrontEnd::showHint(std::function<void(int)> answer)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    if (hint.showAgain())
        hint.beginSheetModalForWindow(visibleWindow(), std::move(answer));
    else
        answer(responseContinue);
}

void WindowFrontEnd::showStopItem(const QString &title, const QRectF &recorded)
{
    const QRect frame = desktopPixels(recorded, static_cast<int>(overlayMargin), mainDisplayPlacement());
    m_stopItem = std::make_unique<StopItem>(
        title, ToolkitScale(*QGuiApplication::primaryScreen()).logicalAround(frame));
    QObject::connect(m_stopItem.get(), &StopItem::stopAsked, m_delegate, &VornicAppDelegate::stopRecord);
}

void WindowFrontEnd::setStopItemTitle(const QString &title)
{
    if (m_stopItem)
        m_stopItem->setTitle(title);
}

void WindowFrontEnd::hideStopItem()
{
    // The item's own click may be what led here.
    if (m_stopItem)
        m_stopItem.release()->deleteLater();
}

void WindowFrontEnd::minimiseMainWindow()
{
    if (m_window)
        m_window->showMinimized();
}

void WindowFrontEnd::bringMainWindowToFront()
{
    if (!visibleWindow())
        return;
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->raise();
    m_window->activateWindow();
}

void WindowFrontEnd::setBusy(bool busy)
{
    if (m_window)
        m_window->setBusy(busy);
}

void WindowFrontEnd::reloadData()
{
    if (m_window)
        m_window->reloadData();
}

void WindowFrontEnd::askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer)
{
    runSavePanel(tr("Untitled"), type, [this, type, answer = std::move(answer)](const auto &path) {
        if (path) {
            answer(path);
            return;
        }
        QMessageBox box(visibleWindow());
        fill(box, tr("Give the recording up?"), tr("It cannot be brought back."));
        box.setDefaultButton(box.addButton(tr("Save elsewhere"), QMessageBox::RejectRole));
        const QPushButton *givesUp = box.addButton(tr("Give up"), QMessageBox::DestructiveRole);
        box.exec();
        if (box.clickedButton() == givesUp)
            answer(std::nullopt);
        else
            askForOtherFile(type, answer);
    });
}

void WindowFrontEnd::beginProgress(std::uint64_t frames)
{
    VNEncoderProgress::shareEncoderProgress().beginSheet(visibleWindow(), frames);
}

void WindowFrontEnd::setProgress(double percent)
{
    VNEncoderProgress::shareEncoderProgress().setPercent(percent);
}

void WindowFrontEnd::endProgress()
{
    VNEncoderProgress::shareEncoderProgress().endSheet();
}

void WindowFrontEnd::alert(const QString &message, const QString &informativeText)
{
    QMessageBox box(visibleWindow());
    fill(box, message, informativeText);
    box.setDefaultButton(box.addButton(tr("OK"), QMessageBox::AcceptRole));
    box.exec();
}

void WindowFrontEnd::alertError(const QString &sentence)
{
    alert(tr("Error"), sentence);
}

bool WindowFrontEnd::confirmQuit(const QString &message, const QString &informativeText)
{
    QMessageBox box(visibleWindow());
    fill(box, message, informativeText);
    box.setDefaultButton(box.addButton(tr("No"), QMessageBox::RejectRole));
    const QPushButton *yes = box.addButton(tr("Yes"), QMessageBox::AcceptRole);
    box.exec();
    return box.clickedButton() == yes;
}

void WindowFrontEnd::reveal(const QString &path)
{
    revealInFileManager(path);
}

void WindowFrontEnd::open(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void WindowFrontEnd::announceMovie(const QString &path, double seconds)
{
    const QFileInfo movie(path);
    m_notifier->show(
        { .title = tr("The recording is finished"),
          .body
          = tr("%1: %2 long, %3")
                .arg(movie.fileName(), minutesAndSeconds(seconds), QLocale().formattedDataSize(movie.size())),
          .actionLabel = tr("Show in folder"),
          .action = [path](const QString &token) { revealInFileManager(path, token); } });
}

void WindowFrontEnd::inhibitIdle(bool inhibits)
{
    m_idleInhibitor = inhibits ? std::make_unique<IdleInhibitor>(tr("Recording the screen")) : nullptr;
}

void WindowFrontEnd::chooseLogoImage(std::function<void(std::optional<QString>)> answer)
{
    auto *panel = new QFileDialog(visibleWindow(), tr("Choose the logo's picture"));
    panel->setFileMode(QFileDialog::ExistingFile);
    QStringList types;
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QByteArray &type : formats)
        types += QStringLiteral("*.%1").arg(QString::fromLatin1(type));
    panel->setNameFilter(tr("Pictures (%1)").arg(types.join(u' ')));
    runPanel(*panel, std::move(answer));
}

void WindowFrontEnd::orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &)> changed)
{
    if (!m_fontPanel) {
        m_fontPanel = new QFontDialog(visibleWindow());
        m_fontPanel->setAttribute(Qt::WA_DeleteOnClose);
        m_fontPanel->setOptions(QFontDialog::DontUseNativeDialog | QFontDialog::NoButtons);
        m_fontPanel->setWindowTitle(tr("The logo's font"));
        m_fontPanel->setCurrentFont(selected);
        QObject::connect(m_fontPanel, &QFontDialog::currentFontChanged, m_fontPanel, std::move(changed));
    }
    m_fontPanel->show();
    m_fontPanel->raise();
    m_fontPanel->activateWindow();
}

} // namespace vornic
