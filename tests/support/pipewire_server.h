#pragma once

#include "support/child_process.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace vornic::test {

/// PipeWire and WirePlumber (with the bus that this wants) of the test's own, without devices: no other program knows their socket.
///
/// Made and destroyed on the test's main thread. Any number of them may run at once.
class PipeWireServer
{
public:
    [[nodiscard]] static bool isInstalled();
    /// Returns once streams can be connected; null, with the reason on standard error, when it does not come up.
    [[nodiscard]] static std::unique_ptr<PipeWireServer> start();
    ~PipeWireServer();
    PipeWireServer(const PipeWireServer &) = delete;
    PipeWireServer &operator=(const PipeWireServer &) = delete;

    /// A new connection to PipeWire, the caller's; -1 where there is none to be had.
    [[nodiscard]] int connect() const;
    /// Ends it at once, as a crash would.
    void killPipeWire();
    /// The same for what connects streams, and alone keeps them connected.
    void killWirePlumber();

private:
    PipeWireServer() = default;
    [[nodiscard]] bool launch();
    [[nodiscard]] bool run(std::unique_ptr<ChildProcess> &process,
                           const QString &command,
                           const std::function<bool()> &isUp) const;
    [[nodiscard]] QStringList environment() const;
    [[nodiscard]] bool isWirePlumberThere() const;

    QTemporaryDir m_folder;
    std::unique_ptr<ChildProcess> m_bus; ///< without which WirePlumber ends
    std::unique_ptr<ChildProcess> m_pipeWire;
    std::unique_ptr<ChildProcess> m_wirePlumber;
};

} // namespace vornic::test
