#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace vornic {

/// What a person is asked and told around a recording.
///
/// Implemented by a front end; called on the main thread only. Answers may come during the call or later, each
/// once at most. By default questions get the answer that goes on.
class RecordingQuestions
{
public:
    /// The responses of a sheet.
    static constexpr int responseStop = -1000;
    static constexpr int responseContinue = -1002;

    /// Too little space is free: true goes on all the same.
    virtual void askAboutFreeSpace(std::function<void(bool goOn)> answer) { answer(true); }
    /// Asks for the movie's file, of the one type \a type; nothing when the user thinks better of it.
    virtual void runSavePanel(const QString &name,
                              const QString &type,
                              std::function<void(std::optional<QString> path)> answer)
        = 0;
    /// Sound is asked for, but there is no input to take it from: true records without.
    virtual void askToRecordWithoutSound(std::function<void(bool goOn)> answer) { answer(true); }
    /// How a recording is stopped, told before it starts.
    virtual void showHint(std::function<void(int response)> answer) { answer(responseContinue); }
    /// The window above which the desktop's own questions are to stand, as its portals name windows; empty for none.
    [[nodiscard]] virtual QString parentWindow() const { return {}; }
    /// The user did not want the desktop to show its screen to this program; he knows.
    virtual void displayDeclined() { }
    /// Counts down on the screen to the start; false when the user thinks better of it.
    virtual void countDown(std::function<void(bool goOn)> answer) { answer(true); }
    /// The movie could not be written, but the recording is still there: another file for it, or nothing to
    /// keep the recording for later.
    virtual void askForOtherFile(const QString & /*type*/,
                                 std::function<void(std::optional<QString> path)> answer)
    {
        answer(std::nullopt);
    }
    /// True when the user wants to quit although a recording runs. Blocks.
    [[nodiscard]] virtual bool confirmQuit(const QString & /*message*/, const QString & /*informativeText*/)
    {
        return true;
    }
    /// Blocks until the user has read it.
    virtual void alert(const QString &message, const QString &informativeText) = 0;
    /// Something has failed; \a sentence says what and why. Blocks until the user has read it.
    virtual void alertError(const QString &sentence) = 0;

protected:
    RecordingQuestions() = default;
    ~RecordingQuestions() = default;
    RecordingQuestions(const RecordingQuestions &) = default;
    RecordingQuestions &operator=(const RecordingQuestions &) = default;
};

} // namespace vornic
