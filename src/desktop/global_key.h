#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace vornic {

/// One key, with modifiers, that is heard whatever program has the keyboard focus.
///
/// Made by whoever wants to hear it, after the application object; lives on the main thread. A key that is held
/// down is heard once.
class GlobalKey : public QObject
{
    Q_OBJECT
public:
    enum class Answer {
        Heard,            ///< it is, from now on; also for no key
        TakenByOther,     ///< another program hears it alone
        NoSuchKey,        ///< the keyboard has no such key, or the text names none
        NotOnThisDesktop, ///< programs cannot hear keys of others here
    };

    /// Never null.
    [[nodiscard]] static std::unique_ptr<GlobalKey> create();
    ~GlobalKey() override = default;

    /// Hears \a portableText from now on, as QKeySequence writes it portably ("Ctrl+Alt+R"), and no longer the one
    /// before; empty: none. Blocks for some exchanges with the display server.
    [[nodiscard]] virtual Answer listenFor(const QString &portableText) = 0;

signals:
    void pressed();
};

} // namespace vornic
