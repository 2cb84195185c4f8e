#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace vornic {

class BitmapImage;

/// A pointer shape: equal when picture and hot spot are equal.
struct CursorShape {
    QImage picture; ///< Format_ARGB32_Premultiplied, device pixels
    QPoint hotSpot; ///< from the picture's top left, y down

    friend bool operator==(const CursorShape &, const CursorShape &) = default;
};

/// What has become of the wish to record a display.
struct DisplayAccess {
    enum class State {
        Granted,
        Declined, ///< by the user, who need not be told
        Failed,
    };
    State state = State::Granted;
    QString whyNot; ///< one sentence for the user where it has failed
};

/// The main display of a desktop, as a recorder needs it.
///
/// Made through the table of backends (displayBackends()); every function may be called from any thread but prepare() and
/// release(), which belong to the main thread.
/// Coordinates are device pixels from the main display's top left, y down, wherever it stands on the desktop.
class DisplayBackend
{
public:
    virtual ~DisplayBackend() = default;
    DisplayBackend(const DisplayBackend &) = delete;
    DisplayBackend &operator=(const DisplayBackend &) = delete;

    using AccessAnswer = std::function<void(const DisplayAccess &)>;

    /// Makes the display ready for the grabs of a recording, which may be a question to its user, with no limit on the
    /// time that he takes. \a answer is called once, now or later; never when release() was called before. A display
    /// that is ready says so at once. \a parentWindow: above which window such a question is to stand, as the desktop's
    /// portals name windows; empty for none.
    virtual void prepare(const QString & /*parentWindow*/, const AccessAnswer &answer) { answer({}); }
    /// There is no recording any more, nor the wish for one: undoes prepare(), or gives it up.
    virtual void release() { }

    /// The id of the main display; 0 means that there is none.
    [[nodiscard]] virtual std::uint32_t mainDisplayId() const = 0;
    /// The size now; empty when there is no display.
    [[nodiscard]] virtual QSize mainDisplaySize() const = 0;
    /// Where its top left lies on the desktop, from the desktop's top left: windows are placed by that.
    [[nodiscard]] virtual QPoint mainDisplayOrigin() const { return {}; }
    /// How the desktop calls the monitor that it is, "DP-1", where there are others that might be recorded in its place;
    /// else empty.
    [[nodiscard]] virtual QString mainDisplayName() const { return {}; }
    /// The part of \a rectangle that lies on the display, without the pointer; null when none does, or when
    /// the server refuses. Blocks for one exchange with the server, or for none when nothing has changed.
    [[nodiscard]] virtual std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) = 0;
    /// Where the pointer's hot spot is; may lie off the main display.
    [[nodiscard]] virtual QPoint pointerPosition() = 0;
    /// The shape that the pointer has now; null when it is hidden or unknown.
    [[nodiscard]] virtual std::shared_ptr<const CursorShape> cursorShape() = 0;

protected:
    DisplayBackend() = default;
};

/// One row of the table of backends.
struct DisplayBackendEntry {
    std::string_view id;   ///< as in the environment variable VORNIC_DISPLAY
    bool selectedByItself; ///< false: only when asked for by its id
    /// Whether the desktop session is of the kind that the backend is for: then its sentence tells what is wrong there.
    bool (*isForThisSession)();
    /// The backend, or null with one sentence for the user in the argument.
    std::unique_ptr<DisplayBackend> (*create)(QString &whyNot);
};

/// All backends, best first.
[[nodiscard]] std::span<const DisplayBackendEntry> displayBackends();

/// The process's display, chosen at the first call and never null.
///
/// The environment variable VORNIC_DISPLAY forces a backend by id. Where none works it is the null backend,
/// which has no display (id 0, empty size, no images) and carries the sentence for the user.
[[nodiscard]] std::shared_ptr<DisplayBackend> mainDisplay();

/// Why there is no display, one sentence for the user; empty while there is one.
[[nodiscard]] QString noDisplayReason();

/// To be called before the toolkit takes leave of the display, which it would wait for: a server that does not answer
/// within two seconds is given up.
void leaveSilentDisplay();

/// Closes all connections that the process has to the display, as if it were gone: whoever waits for an answer gets none.
/// Any thread.
void abandonDisplay();

/// Puts a display in place of the chosen one (for tests); null makes the next call choose again.
void setMainDisplay(std::shared_ptr<DisplayBackend> display);

} // namespace vornic
