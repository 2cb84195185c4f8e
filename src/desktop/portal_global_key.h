#pragma once

#include "desktop/global_key.h"

#include <QDBusMessage>

#include <memory>

namespace vornic {

class PortalRequest;

/// A key that a Wayland desktop gives through its portal for such keys, where it has one. It may ask its user, who may
/// choose another: what is asked for is a wish.
///
/// Made by GlobalKey::create(); lives on the main thread, and waits for nobody.
class PortalGlobalKey final : public GlobalKey
{
    Q_OBJECT
public:
    PortalGlobalKey();
    ~PortalGlobalKey() override;

    [[nodiscard]] Answer listenFor(const QString &portableText) override;
    [[nodiscard]] QString givenKey() const override { return m_given; }

private slots:
    // All of the desktop's sessions are heard of.
    void activated(const QDBusMessage &signal);
    void deactivated(const QDBusMessage &signal);
    void changed(const QDBusMessage &signal);
    void sessionClosed();

private:
    using Step = void (PortalGlobalKey::*)(const QVariantMap &results);

    void begin();
    void listenToPortal();
    void request(const QString &method, const QVariantList &arguments, QVariantMap options, Step next);
    void createSession();
    void bind(const QVariantMap &results);
    void learnBound(const QVariantMap &results);
    void learnKey(const QVariant &shortcuts);
    void portalEnded();
    [[nodiscard]] bool isOurs(const QDBusMessage &signal) const;

    QString m_wish;    ///< as QKeySequence writes it portably; empty: none
    QString m_given;   ///< as the desktop calls the key that it gave
    QString m_session; ///< its path; empty where there is none
    std::unique_ptr<PortalRequest> m_request;
    int m_attempt = 0; ///< answers to earlier ones are void
    bool m_isListening = false;
    bool m_isHeld = false;   ///< the key is down
    bool m_wasEnded = false; ///< the portal has gone, and with it our session
};

} // namespace vornic
