#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace vornic::test {

/// Another process that uses the desktop as this program does; what it is told to do stands in
/// desktop_client.cpp.
///
/// Made by a test, on its main thread. The process ends with the object, and also when the test dies.
class ClientProcess
{
public:
    /// \a environment has "NAME=value" entries, or "NAME" for what is not to be there.
    explicit ClientProcess(const QStringList &arguments, const QStringList &environment = {});
    ~ClientProcess();
    ClientProcess(const ClientProcess &) = delete;
    ClientProcess &operator=(const ClientProcess &) = delete;

    [[nodiscard]] static QString program();

    /// Runs the event loop until the process has written a line, which it returns; empty if it ends before.
    [[nodiscard]] QString nextLine();
    /// The system's signal \a signalNumber.
    void signal(int signalNumber);
    /// Asks it to end; its exit status, or -1 when it crashed or does not end.
    [[nodiscard]] int end();

private:
    QProcess m_process;
};

} // namespace vornic::test
