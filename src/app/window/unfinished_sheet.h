#pragma once

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>

class QAbstractButton;
class QDialog;
class QListWidget;
class QListWidgetItem;
class QWidget;

namespace vornic {

class UnfinishedRecordings;

/// The sheet that lists the recordings that were not finished. What is chosen in the list is made into its movie, or
/// deleted.
///
/// Made by Recovery, which carries that out; main thread only. Pictures are read for what is seen only.
class UnfinishedSheet : public QObject
{
    Q_OBJECT
public:
    /// Borrows \a recordings, whose changes it follows.
    explicit UnfinishedSheet(UnfinishedRecordings &recordings, QObject *parent = nullptr);

    void beginSheet(QWidget *window);
    void endSheet();
    /// Null while it is not shown.
    [[nodiscard]] QWidget *window() const;
    /// Whether something may be done with them now.
    void setActionsEnabled(bool enabled);

signals:
    void movieAsked(const QString &id);
    void deletionAsked(const QString &id);

private:
    void showRecordings();
    void enableButtons();
    void askForPictures();
    void showPicture(const QString &id, const QImage &picture);
    [[nodiscard]] QString currentId() const;
    [[nodiscard]] QListWidgetItem *itemOf(const QString &id) const;

    UnfinishedRecordings &m_recordings;
    bool m_actionsEnabled = true;
    QSet<QString> m_picturesAskedFor;
    QPointer<QDialog> m_window; ///< null while none is shown
    QListWidget *m_list = nullptr;
    QAbstractButton *m_movieButton = nullptr;
    QAbstractButton *m_deleteButton = nullptr;
};

} // namespace vornic
