#pragma once

#include "support/child_process.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace vornic::test {

/// A sound server without hardware, of the test's own: no other program knows its socket.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once.
class SoundServer
{
public:
    enum class Kind { PulseAudio, PipeWire };

    [[nodiscard]] static bool isInstalled(Kind kind);
    /// Returns once the server takes clients, without devices; it is $PULSE_SERVER of this process until the
    /// object ends. Null, with the reason on standard error, when it does not come up.
    /// \a quantum is how many frames PipeWire moves at a time, for tests in which none may be lost on a
    /// machine that is late at times; 0 is as it likes.
    [[nodiscard]] static std::unique_ptr<SoundServer> start(Kind kind, int quantum = 0);
    ~SoundServer();
    SoundServer(const SoundServer &) = delete;
    SoundServer &operator=(const SoundServer &) = delete;

    /// As in $PULSE_SERVER.
    [[nodiscard]] QByteArray address() const;
    /// Ends the server at once, as a crash would.
    void kill();
    /// Starts it again on the same socket, without devices; false when it does not come up.
    [[nodiscard]] bool restart();
    [[nodiscard]] bool isRunning() const { return m_processes.back()->isRunning(); }
    void suspend();
    void resume();

    /// An output that plays into nothing, of 48 kHz; what it plays is an input named "Monitor of" it. Each
    /// returns what remove() takes, or an empty text when the server refuses.
    [[nodiscard]] QString addOutput(const QString &name, const QString &description);
    /// An input that hears nothing.
    [[nodiscard]] QString addMicrophone(const QString &name, const QString &description);
    void remove(const QString &device);
    /// Gives an input another description; PulseAudio only.
    void rename(const QString &name, const QString &description);
    /// Makes a device the default of its \a kind, "sink" or "source"; true once the server names it so. PipeWire leaves
    /// that to another process, and has forgotten a device for it that was not there yet.
    [[nodiscard]] bool setDefault(const QString &kind, const QString &name) const;
    /// pactl with \a arguments, to its end: what it says on standard output, without the last line's end.
    QString pactl(const QStringList &arguments) const;

private:
    SoundServer(Kind kind, int quantum);
    [[nodiscard]] bool launch();
    [[nodiscard]] QStringList environment() const;
    [[nodiscard]] QStringList optionsOf(const QString &program) const;
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    Kind m_kind;
    QTemporaryDir m_folder;
    std::vector<std::unique_ptr<ChildProcess>> m_processes;
    QByteArray m_serverBefore;
};

} // namespace vornic::test
