#pragma once

#include "capture/spool/stored_recordings.h"

#include <QList>
#include <QWidget>

class QBoxLayout;
class QImage;
class QLabel;
class QPushButton;

namespace vornic {

class ElidedLabel;

/// Tells above the record button of recordings that were not finished, and what may be done with them: with one, its
/// picture and the three choices, with several, the way to their list.
///
/// Made with the main window, as a child of it; main thread only. It takes no room while there is nothing to tell.
class UnfinishedLine : public QWidget
{
    Q_OBJECT
public:
    explicit UnfinishedLine(QWidget *parent = nullptr);

    /// Empty when nothing is shown.
    [[nodiscard]] QString text() const;
    /// Nothing is shown of an empty list.
    void showRecordings(const QList<StoredRecording> &recordings);
    /// Of the one that is shown.
    void showPicture(const QImage &picture);
    /// Of the one recording that is shown; empty where none or several are.
    [[nodiscard]] const QString &id() const { return m_id; }
    /// Whether something may be done with them now.
    void setActionsEnabled(bool enabled);

signals:
    /// It takes more room now, or less.
    void roomChanged();
    void movieAsked(const QString &id);
    void deletionAsked(const QString &id);
    void listAsked();
    /// To be left alone until the next start.
    void keepAsked();

private:
    [[nodiscard]] QPushButton *makeButton(const QString &text, const char *name, const QString &toolTip);

    QString m_id;
    QLabel *m_picture;
    QBoxLayout *m_column; ///< of label and buttons
    ElidedLabel *m_label;
    QPushButton *m_movieButton;
    QPushButton *m_listButton;
    QPushButton *m_keepButton;
    QPushButton *m_deleteButton;
};

} // namespace vornic
