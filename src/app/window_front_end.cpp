#include "app/window_front_end.h"

#include "app/VornicAppDelegate.h"
#include "app/main_window.h"
#include "app/stop_item.h"
#include "capture/VNBufferMgr.h"
#include "platform/user_defaults.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace vornic {

namespace {

const QString hintKey = QStringLiteral("VNShowHintWndAgain");

/// Absent means that the hint is shown.
bool showsHintAgain()
{
    const QVariant stored = user_defaults::value(hintKey);
    return !stored.isValid() || stored.toBool();
}

} // namespace

WindowFrontEnd::WindowFrontEnd() = default;
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
    auto *box = new QMessageBox(QMessageBox::Warning,
                                QStringLiteral("Vornic"),
                                QObject::tr("There is little free disk space; a recording wants %1.")
                                    .arg(VNBufferMgr::descriptionOfFreeSpaceRequired()),
                                QMessageBox::NoButton,
                                visibleWindow());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    const QPushButton *goOn = box->addButton(QObject::tr("Continue"), QMessageBox::AcceptRole);
    box->setDefaultButton(box->addButton(QMessageBox::Cancel));
    QObject::connect(box, &QMessageBox::finished, box, [box, goOn, answer = std::move(answer)] {
        answer(box->clickedButton() == goOn);
    });
    box->open();
}

void WindowFrontEnd::runSavePanel(const QString &name,
                                  const QString &type,
                                  std::function<void(std::optional<QString>)> answer)
{
    auto *panel = new QFileDialog(visibleWindow(), QObject::tr("Save the recording as"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowModality(Qt::WindowModal);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilter(QObject::tr("Movies (*.%1)").arg(type));
    panel->setDefaultSuffix(type);
    panel->setDirectory(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    panel->selectFile(name);
    QObject::connect(panel, &QFileDialog::finished, panel, [panel, answer = std::move(answer)](int result) {
        const QStringList files = panel->selectedFiles();
        const bool chosen = result == QDialog::Accepted && !files.isEmpty();
        answer(chosen ? std::optional(files.first()) : std::nullopt);
    });
    panel->open();
}

void WindowFrontEnd::showHint(std::function<void(int)> answer)
{
    if (!showsHintAgain()) {
        answer(responseContinue);
        return;
    }
    auto *box
        = new QMessageBox(QMessageBox::Information,
                          QStringLiteral("Vornic"),
                          QObject::tr("The window makes room while the recording runs. Stop it with the red "
                                      "button, which shows the time."),
                          QMessageBox::Cancel,
                          visibleWindow());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    QPushButton *start = box->addButton(QObject::tr("Start recording"), QMessageBox::AcceptRole);
    box->setDefaultButton(start);
    auto *again = new QCheckBox(QObject::tr("Show this again"), box);
    again->setChecked(true);
    box->setCheckBox(again);
    QObject::connect(box, &QMessageBox::finished, box, [box, start, again, answer = std::move(answer)] {
        user_defaults::setValue(hintKey, again->isChecked());
        answer(box->clickedButton() == start ? responseContinue : responseStop);
    });
    box->open();
}

void WindowFrontEnd::showStopItem(const QString &title)
{
    m_stopItem = std::make_unique<StopItem>(title);
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

void WindowFrontEnd::setSaving(bool saving)
{
    if (m_window)
        m_window->setSaving(saving);
}

void WindowFrontEnd::reloadData()
{
    if (m_window)
        m_window->reloadData();
}

void WindowFrontEnd::askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer)
{
    runSavePanel(QObject::tr("Untitled"), type, [this, type, answer = std::move(answer)](const auto &path) {
        if (path) {
            answer(path);
            return;
        }
        QMessageBox box(QMessageBox::Warning,
                        QStringLiteral("Vornic"),
                        QObject::tr("Give the recording up? It cannot be brought back."),
                        QMessageBox::NoButton,
                        visibleWindow());
        box.setDefaultButton(box.addButton(QObject::tr("Save elsewhere"), QMessageBox::RejectRole));
        const QPushButton *givesUp = box.addButton(QObject::tr("Give up"), QMessageBox::DestructiveRole);
        box.exec();
        if (box.clickedButton() == givesUp)
            answer(std::nullopt);
        else
            askForOtherFile(type, answer);
    });
}

void WindowFrontEnd::beginProgress()
{
    m_progress = std::make_unique<QProgressDialog>(QObject::tr("Writing the movie"),
                                                   QString(),
                                                   0,
                                                   100,
                                                   visibleWindow(),
                                                   Qt::Dialog | Qt::CustomizeWindowHint);
    m_progress->setWindowTitle(QStringLiteral("Vornic"));
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setAutoReset(false);
    m_progress->setMinimumDuration(0);
    m_progress->show();
}

void WindowFrontEnd::setProgress(double percent)
{
    if (m_progress)
        m_progress->setValue(static_cast<int>(percent));
}

void WindowFrontEnd::endProgress()
{
    m_progress.reset();
}

void WindowFrontEnd::alert(const QString &message, const QString &informativeText)
{
    QMessageBox box(
        QMessageBox::Warning, QStringLiteral("Vornic"), message, QMessageBox::Ok, visibleWindow());
    box.setInformativeText(informativeText);
    box.exec();
}

bool WindowFrontEnd::confirmQuit(const QString &message, const QString &informativeText)
{
    QMessageBox box(
        QMessageBox::Question, QStringLiteral("Vornic"), message, QMessageBox::NoButton, visibleWindow());
    box.setInformativeText(informativeText);
    box.setDefaultButton(box.addButton(QObject::tr("No"), QMessageBox::RejectRole));
    const QPushButton *yes = box.addButton(QObject::tr("Yes"), QMessageBox::AcceptRole);
    box.exec();
    return box.clickedButton() == yes;
}

void WindowFrontEnd::reveal(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

void WindowFrontEnd::open(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace vornic
