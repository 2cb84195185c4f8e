#pragma once

#include <QDialog>

class QBoxLayout;

namespace vornic {

/// A question, or something to know, in the skin: a heading, more beneath it, and buttons.
///
/// Made for each question by who asks it; main thread only. exec() blocks and returns the answer of the button that
/// was pressed.
class AlertBox : public QDialog
{
    Q_OBJECT
public:
    enum class Kind {
        Question, ///< the message is the heading
        Failure, ///< the message is a mere "Error": the text beneath it, which says what failed, is the heading
    };

    AlertBox(QWidget *parent, Kind kind, const QString &message, const QString &informativeText);

    /// The first one is the default, stands at the right, and is also the answer of Escape and of closing the box.
    void addButton(const QString &text, int answer);

    /// There is nothing to choose.
    [[nodiscard]] bool onlyTells() const;
    [[nodiscard]] int answerOfEscape() const { return m_answerOfEscape; }
    void done(int answer) override;

private:
    QBoxLayout *m_buttons = nullptr;
    int m_answerOfEscape = Rejected;
};

/// What failed, of a sentence that says why, too: "The movie cannot be written" of "The movie cannot be written: the
/// disk is full."
[[nodiscard]] QString whatFailed(const QString &sentence);

} // namespace vornic
