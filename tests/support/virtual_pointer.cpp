#include "support/virtual_pointer.h"

#include "wayland/wayland_connection.h"

#include <wayland-protocols/virtual-pointer.h>

#include <chrono>
#include <cstdint>
#include <utility>

namespace vornic::test {

namespace {

constexpr std::uint32_t leftButton = 0x110; // BTN_LEFT of linux/input-event-codes.h

std::uint32_t nowMs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

struct Unplug {
    void operator()(zwlr_virtual_pointer_manager_v1 *manager) const
    {
        zwlr_virtual_pointer_manager_v1_destroy(manager);
    }
    void operator()(zwlr_virtual_pointer_v1 *pointer) const { zwlr_virtual_pointer_v1_destroy(pointer); }
};

} // namespace

struct VirtualPointer::Parts {
    std::unique_ptr<WaylandConnection> connection;
    WaylandPtr<wl_seat> seat;
    std::unique_ptr<zwlr_virtual_pointer_v1, Unplug> pointer;
};

std::unique_ptr<VirtualPointer> VirtualPointer::plugIn(QSize pixels)
{
    auto parts = std::make_unique<Parts>();
    parts->connection = WaylandConnection::open();
    if (!parts->connection)
        return nullptr;
    parts->seat = parts->connection->bind<wl_seat>(wl_seat_interface, 1);
    const auto manager = parts->connection->bind<zwlr_virtual_pointer_manager_v1, Unplug>(
        zwlr_virtual_pointer_manager_v1_interface, 1);
    if (!manager)
        return nullptr;
    parts->pointer.reset(
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager.get(), parts->seat.get()));
    parts->connection->roundTrip();
    return std::unique_ptr<VirtualPointer>(new VirtualPointer(std::move(parts), pixels));
}

VirtualPointer::VirtualPointer(std::unique_ptr<Parts> parts, QSize pixels)
    : m_parts(std::move(parts))
    , m_pixels(pixels)
{
}

VirtualPointer::~VirtualPointer()
{
    m_parts->pointer.reset();
    m_parts->connection->roundTrip();
}

void VirtualPointer::moveTo(QPoint pixel)
{
    // Twice as fine as pixels, for their middles.
    const auto fine = [](int value, int more = 0) { return static_cast<std::uint32_t>(2 * value + more); };
    zwlr_virtual_pointer_v1_motion_absolute(m_parts->pointer.get(),
                                            nowMs(),
                                            fine(pixel.x(), 1),
                                            fine(pixel.y(), 1),
                                            fine(m_pixels.width()),
                                            fine(m_pixels.height()));
    endFrame();
}

void VirtualPointer::click(QPoint pixel)
{
    moveTo(pixel);
    press();
    release();
}

void VirtualPointer::drag(QPoint from, QPoint to)
{
    moveTo(from);
    press();
    moveTo((from + to) / 2);
    moveTo(to);
    release();
}

void VirtualPointer::button(bool isDown)
{
    zwlr_virtual_pointer_v1_button(m_parts->pointer.get(),
                                   nowMs(),
                                   leftButton,
                                   isDown ? WL_POINTER_BUTTON_STATE_PRESSED
                                          : WL_POINTER_BUTTON_STATE_RELEASED);
    endFrame();
}

void VirtualPointer::endFrame()
{
    zwlr_virtual_pointer_v1_frame(m_parts->pointer.get());
    m_parts->connection->roundTrip();
}

} // namespace vornic::test
