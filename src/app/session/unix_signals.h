#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <memory>

namespace vornic {

/// SIGINT, SIGTERM and SIGHUP as a Qt signal on the main thread.
///
/// At most one exists; made by main after the application object and before any other thread.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

signals:
    void terminationAsked(int number);

private:
    void readSignal();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vornic
