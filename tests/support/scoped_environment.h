#pragma once

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace vornic::test {

/// Environment variables of this process that are others as long as the object lives.
///
/// Made by tests while they have one thread.
class ScopedEnvironment
{
public:
    ScopedEnvironment() = default;
    ~ScopedEnvironment()
    {
        for (auto variable = m_before.rbegin(); variable != m_before.rend(); ++variable) {
            if (variable->second)
                qputenv(variable->first.constData(), *variable->second);
            else
                qunsetenv(variable->first.constData());
        }
    }
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;

    void set(const QByteArray &name, const QString &value)
    {
        remember(name);
        qputenv(name.constData(), value.toLocal8Bit());
    }
    void unset(const QByteArray &name)
    {
        remember(name);
        qunsetenv(name.constData());
    }

private:
    void remember(const QByteArray &name)
    {
        const bool isThere = qEnvironmentVariableIsSet(name.constData());
        m_before.emplace_back(name, isThere ? std::optional(qgetenv(name.constData())) : std::nullopt);
    }

    std::vector<std::pair<QByteArray, std::optional<QByteArray>>> m_before;
};

} // namespace vornic::test
