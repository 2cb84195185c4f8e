#pragma once

namespace vornic {

/// Keeps the display server from blanking the screen, as long as it lives.
///
/// Made by IdleInhibitor, used on one thread; one class for each kind of display server.
class BlankingPause
{
public:
    virtual ~BlankingPause() = default;
    BlankingPause(const BlankingPause &) = delete;
    BlankingPause &operator=(const BlankingPause &) = delete;

protected:
    BlankingPause() = default;
};

} // namespace vornic
