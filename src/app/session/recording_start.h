#pragma once

#include "codec/file_identity.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace vornic {

class AudioInput;
class DisplayBackend;
class RecordingQuestions;
class VNBufferMgr;
class VNOption;
struct DisplayAccess;

/// What stands between the record button and the recording: the questions, and a display that is made ready.
///
/// Made by RecordingSession for all its recordings; lives on the main thread. One of the signals is sent once for each
/// begin(), unless releaseDisplay() comes first.
class RecordingStart : public QObject
{
    Q_OBJECT
public:
    /// Borrows all for life.
    RecordingStart(RecordingQuestions &questions,
                   const VNOption &options,
                   VNBufferMgr &spool,
                   AudioInput &sound);
    ~RecordingStart() override;

    /// Asks what every recording needs to know first, and goes on with \a next.
    void begin(std::function<void()> next);
    void startRecordSelectOutFile();
    void startRecorderWithHintWindow();
    /// Without further questions, to a \a file that must not be there yet, or, when that is empty, to a new one of today's
    /// date and time among the user's movies.
    void useFile(const QString &file);
    /// Whether the movie and the spool can be written; the user is told why not.
    [[nodiscard]] bool isOutputReady() const;

    /// The desktop is asked for its screen, and perhaps asks its user.
    [[nodiscard]] bool awaitsDisplay() const { return m_awaitsDisplay; }
    /// What was asked for is given back, or given up.
    void releaseDisplay();

    /// The movie's, as it was chosen last.
    [[nodiscard]] const QString &file() const { return m_file; }
    /// What stood there then, and may be replaced.
    [[nodiscard]] const std::optional<FileIdentity> &replacedFile() const { return m_replacedFile; }

signals:
    /// The capture may begin.
    void accepted();
    /// The user thought better of it, or it cannot be recorded.
    void refused();

private:
    void askAboutSound(const std::function<void()> &next);
    void choose(const QString &file);
    void prepareDisplay();
    void displayAnswered(const DisplayAccess &access);
    void countDown();

    RecordingQuestions &m_questions;
    const VNOption &m_options;
    VNBufferMgr &m_spool;
    AudioInput &m_sound;
    QString m_file;
    std::optional<FileIdentity> m_replacedFile;
    std::shared_ptr<DisplayBackend> m_display; ///< from prepare() to release()
    bool m_awaitsDisplay = false;              ///< there is no answer to prepare() yet
};

} // namespace vornic
