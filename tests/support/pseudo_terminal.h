#pragma once

#include <QByteArray>
#include <QString>

namespace vornic::test {

/// A terminal without a screen: what programs write to its device is read here.
///
/// Made by tests of what a program shows on a terminal only; on one thread.
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    /// The device's path, to be opened for writing; empty when the system gives no terminal.
    [[nodiscard]] QString device() const;
    /// All that has been written so far, control sequences included. Does not block.
    [[nodiscard]] const QByteArray &written();

private:
    int m_controller;
    int m_device = -1; ///< kept open, so that the terminal outlives the programs that write to it
    QByteArray m_written;
};

} // namespace vornic::test
