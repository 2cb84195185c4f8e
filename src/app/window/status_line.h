#pragma once

#include <QWidget>

class QPushButton;

namespace vornic {

class ElidedLabel;

/// A line that says what has become of the last recording, or what else is to be known; as high with a text as
/// without.
///
/// Made with the main window, as a child of it; main thread only. Behind the sentence about a movie stand the
/// buttons that open it and its folder.
class StatusLine : public QWidget
{
    Q_OBJECT
public:
    explicit StatusLine(QWidget *parent = nullptr);

    /// Empty when nothing is shown.
    [[nodiscard]] QString text() const;
    void showSentence(const QString &sentence);
    /// The movie at \a path, which is there, and how long it runs. \a flaws: sentences on what is missing in it.
    void showSaved(const QString &path, double seconds, const QString &flaws = {});
    void clear() { showSentence({}); }

signals:
    void openAsked(const QString &path);
    void revealAsked(const QString &path);

private:
    void setLine(const QString &text, const QString &path, const QString &flaws = {});

    ElidedLabel *m_label;
    QPushButton *m_openButton;
    QPushButton *m_revealButton;
    QString m_path; ///< of the movie that is shown; empty when none is
};

} // namespace vornic
