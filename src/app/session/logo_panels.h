#pragma once

#include <QFont>
#include <QString>

#include <functional>
#include <optional>

namespace vornic {

/// The panels in which the logo's picture and font are chosen.
///
/// Implemented by a front end; called on the main thread only. By default there are none.
class LogoPanels
{
public:
    /// Asks for the logo's picture; nothing when the user thinks better of it.
    virtual void chooseLogoImage(std::function<void(std::optional<QString> path)> answer)
    {
        answer(std::nullopt);
    }
    /// Opens the font panel with \a selected; \a changed gets each font that is tried in it.
    virtual void orderFrontFontPanel(const QFont & /*selected*/,
                                     std::function<void(const QFont &font)> /*changed*/)
    {
    }

protected:
    LogoPanels() = default;
    ~LogoPanels() = default;
    LogoPanels(const LogoPanels &) = default;
    LogoPanels &operator=(const LogoPanels &) = default;
};

} // namespace vornic
