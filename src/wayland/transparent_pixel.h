#pragma once

#include <QString>

#include <memory>

namespace vornic {

class LayerSurface;
class ShmBuffer;
class WaylandConnection;

/// A surface of one pixel at the upper left of a monitor, wholly transparent and without mouse or keys, that is there
/// as long as the object lives. It makes a compositor draw a screen that stands still, some of which tell a new watcher
/// of nothing before they do.
///
/// Made by who waits for a first picture; used by one thread at a time.
class TransparentPixel
{
public:
    /// Returns once it is shown; null where the compositor does not offer such surfaces, or does not answer within some
    /// seconds. \a output is a monitor's name; where there is none of that name the compositor chooses one.
    [[nodiscard]] static std::unique_ptr<TransparentPixel> show(const QString &output = {});
    /// Takes it away and returns at once.
    ~TransparentPixel();
    TransparentPixel(const TransparentPixel &) = delete;
    TransparentPixel &operator=(const TransparentPixel &) = delete;

private:
    TransparentPixel();
    [[nodiscard]] bool map(const QString &output);

    std::unique_ptr<WaylandConnection> m_connection;
    std::unique_ptr<ShmBuffer> m_buffer;
    std::unique_ptr<LayerSurface> m_surface;
};

} // namespace vornic
