#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace vornic {

/// One key, with modifiers, that is heard whatever program has the keyboard focus.
///
/// Made by whoever wants to hear it, after the application object; lives on the main thread. A key that is held
/// down is heard once. On X11 it is the server's, on Wayland the desktop's where that gives programs keys at all.
class GlobalKey : public QObject
{
    Q_OBJECT
public:
    enum class Answer {
        Heard,            ///< it is, from now on; also for no key
        TakenByOther,     ///< another program hears it alone
        NoSuchKey,        ///< the keyboard has no such key, or the text names none
        NotOnThisDesktop, ///< programs cannot hear keys of others here
        Asked,            ///< the desktop is asked, and its user perhaps: answered() tells
        Declined,         ///< by the user
        NotSet,           ///< the desktop knows us, but has no key for it
    };

    /// Never null.
    [[nodiscard]] static std::unique_ptr<GlobalKey> create();
    /// One for a moment: where the desktop would have to be asked, and its user, no key is heard. Never null.
    [[nodiscard]] static std::unique_ptr<GlobalKey> createForMoment();
    ~GlobalKey() override = default;

    /// Hears \a portableText from now on, as QKeySequence writes it portably ("Ctrl+Alt+R"), and no longer the one
    /// before; empty: none. Blocks for some exchanges with the display server.
    [[nodiscard]] virtual Answer listenFor(const QString &portableText) = 0;
    /// How the desktop calls the key that is heard, where that may be another one than was asked for; else empty.
    [[nodiscard]] virtual QString givenKey() const { return {}; }

signals:
    void pressed();
    /// After Asked, and again whenever the desktop has another answer.
    void answered(vornic::GlobalKey::Answer answer);
};

} // namespace vornic
