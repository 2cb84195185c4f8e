#pragma once

#include <QObject>

#include <memory>

namespace vornic {

/// Knows whether the window with the keyboard focus covers a whole screen, so that panels and trays are hidden.
///
/// Made after the application object; lives on the main thread. Where it cannot be known it never is.
class FullScreenWatch : public QObject
{
    Q_OBJECT
public:
    /// Never null.
    [[nodiscard]] static std::unique_ptr<FullScreenWatch> create();
    ~FullScreenWatch() override = default;

    [[nodiscard]] virtual bool isFullScreen() const { return false; }

signals:
    /// isFullScreen() is another answer now.
    void changed();

protected:
    FullScreenWatch() = default;
};

} // namespace vornic
