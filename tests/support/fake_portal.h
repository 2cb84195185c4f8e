#pragma once

#include "support/fake_service.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <functional>

namespace vornic::test {

/// Plays the desktop's portals for screen casts and keys: nobody is asked, and the test says what the user answers.
///
/// Made by a test, lives on its main thread. Its end is the end of the portal's process, as others see it.
class FakePortal
{
public:
    explicit FakePortal(const PrivateBus &bus);

    uint version = 4;
    uint cursorModes = 7;         ///< 1 hidden, 2 embedded, 4 metadata, added up
    std::uint32_t node = 42;      ///< of the stream; 0: there is none
    QVariant position;            ///< of the stream's monitor; invalid: that is not told
    QString restoreToken;         ///< that Start gives; empty: none
    QHash<QString, uint> answers; ///< by the method's name; 0 where there is none: granted
    QStringList unanswered;       ///< methods whose dialog stands for good
    QStringList refused;          ///< methods that are refused with an error, "Not in the mood."
    std::function<int()> remote;  ///< a new connection to PipeWire, which is taken
    QVariant trigger; ///< how the key is called that BindShortcuts gives; invalid: that is not told

    /// The options of the last call of \a method.
    [[nodiscard]] QVariantMap options(const QString &method) const;
    /// The arguments of the last call of \a method.
    [[nodiscard]] QVariantList arguments(const QString &method) const;
    [[nodiscard]] bool wasCalled(const QString &method) const { return !m_service.calls(method).empty(); }
    /// The paths of all requests and sessions that were closed.
    [[nodiscard]] QStringList closed() const;
    [[nodiscard]] QString sessionPath() const { return m_sessionPath; }
    /// What BindShortcuts was told of the key that it is to give.
    [[nodiscard]] QVariantMap wish() const;
    /// The desktop closes the session.
    void closeSession();
    /// The portal for keys tells of the key \a id: \a signal is "Activated" or "Deactivated".
    void tellKey(const QString &signal, const QString &id);
    /// The user has set another key: trigger.
    void tellKeysChanged(const QString &id);
    [[nodiscard]] FakeService &service() { return m_service; }

private:
    [[nodiscard]] QDBusMessage answer(const QDBusMessage &call);
    [[nodiscard]] QDBusMessage answerRequest(const QDBusMessage &call);
    [[nodiscard]] QVariantMap resultsOf(const QDBusMessage &call) const;
    [[nodiscard]] QVariantMap streams() const;
    [[nodiscard]] QVariant keys(const QString &id) const;

    FakeService m_service;
    QString m_sessionPath;
};

} // namespace vornic::test
