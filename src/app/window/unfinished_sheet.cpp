#include "app/window/unfinished_sheet.h"

#include "app/window/sheet.h"
#include "app/window/unfinished_recordings.h"
#include "app/window/unfinished_text.h"
#include "controls/dialog_skin.h"

#include <QDialog>
#include <QIcon>
#include <QPixmap>
#include <QScrollBar>

#include <ui_UnfinishedSheet.h>

#include <algorithm>

namespace vornic {

namespace {

constexpr int idRole = Qt::UserRole;

} // namespace

UnfinishedSheet::UnfinishedSheet(UnfinishedRecordings &recordings, QObject *parent)
    : QObject(parent)
    , m_recordings(recordings)
{
    connect(&recordings, &UnfinishedRecordings::changed, this, &UnfinishedSheet::showRecordings);
    connect(&recordings, &UnfinishedRecordings::pictureRead, this, &UnfinishedSheet::showPicture);
}

void UnfinishedSheet::beginSheet(QWidget *window)
{
    endSheet();
    m_window = makeSheet<Ui::UnfinishedSheet>(window, [this](const Ui::UnfinishedSheet &ui) {
        m_list = ui.list;
        m_movieButton = ui.makeMovieButton;
        m_deleteButton = ui.deleteButton;
        connect(ui.keepButton, &QAbstractButton::clicked, this, &UnfinishedSheet::endSheet);
        connect(
            ui.makeMovieButton, &QAbstractButton::clicked, this, [this] { emit movieAsked(currentId()); });
        connect(
            ui.deleteButton, &QAbstractButton::clicked, this, [this] { emit deletionAsked(currentId()); });
    });
    m_list->setIconSize(thumbnailSize);
    connect(m_list, &QListWidget::currentRowChanged, this, &UnfinishedSheet::enableButtons);
    connect(m_list->verticalScrollBar(), &QScrollBar::valueChanged, this, &UnfinishedSheet::askForPictures);
    dressDialog(*m_window);
    showRecordings();
    m_window->show();
    askForPictures();
    m_list->setFocus();
}

void UnfinishedSheet::endSheet()
{
    if (m_window)
        m_window->close();
    m_window = nullptr;
}

QWidget *UnfinishedSheet::window() const
{
    return m_window;
}

void UnfinishedSheet::setActionsEnabled(bool enabled)
{
    m_actionsEnabled = enabled;
    if (m_window)
        enableButtons();
}

QString UnfinishedSheet::currentId() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(idRole).toString() : QString();
}

/// The one that is chosen stays so; where it is gone, the one behind it is.
void UnfinishedSheet::showRecordings()
{
    if (!m_window)
        return;
    const QString chosen = currentId();
    const int row = std::max(0, m_list->currentRow());
    const QIcon noPicture(thumbnail({}, m_list->devicePixelRatioF()));
    m_picturesAskedFor.clear();
    m_list->clear();
    for (const StoredRecording &recording : m_recordings.all()) {
        auto *item = new QListWidgetItem(noPicture, unfinishedEntry(recording), m_list);
        item->setData(idRole, recording.id);
    }
    if (QListWidgetItem *same = itemOf(chosen))
        m_list->setCurrentItem(same);
    else
        m_list->setCurrentRow(std::min(row, m_list->count() - 1));
    enableButtons();
    askForPictures();
}

void UnfinishedSheet::enableButtons()
{
    const StoredRecording *chosen = m_recordings.find(currentId());
    m_deleteButton->setEnabled(m_actionsEnabled && chosen);
    m_movieButton->setEnabled(m_actionsEnabled && chosen && chosen->isReadable);
}

/// Of the rows that are seen.
void UnfinishedSheet::askForPictures()
{
    if (!m_window || !m_window->isVisible())
        return;
    const QRect seen = m_list->viewport()->rect();
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem *item = m_list->item(row);
        const QString id = item->data(idRole).toString();
        if (!m_list->visualItemRect(item).intersects(seen) || m_picturesAskedFor.contains(id))
            continue;
        m_picturesAskedFor.insert(id);
        m_recordings.askForPicture(id);
    }
}

void UnfinishedSheet::showPicture(const QString &id, const QImage &picture)
{
    if (!m_window)
        return;
    if (QListWidgetItem *item = itemOf(id))
        item->setIcon(QIcon(thumbnail(picture, m_list->devicePixelRatioF())));
}

QListWidgetItem *UnfinishedSheet::itemOf(const QString &id) const
{
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(idRole).toString() == id)
            return m_list->item(row);
    }
    return nullptr;
}

} // namespace vornic
