#pragma once

#include "display/portal/cast_frame.h"

#include <spa/pod/builder.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vornic {

/// What a compositor and this program have agreed upon for the pictures of a stream.
struct CastFormat {
    QSize size;
    CastPixels::Order order = CastPixels::Order::Bgrx;
};

/// The format in \a param; nothing where it is none that was offered.
[[nodiscard]] std::optional<CastFormat> castFormatIn(const spa_pod *param);

/// What this program can take of a stream and wants to have with it, in the form that the library takes.
///
/// Made on the stack for one call of the library; the objects lie in its own memory.
class CastParams
{
public:
    CastParams();
    CastParams(const CastParams &) = delete;
    CastParams &operator=(const CastParams &) = delete;

    /// Pictures of any size and rate with four bytes a pixel. Without modifiers, so that the compositor puts them into
    /// memory that can be read.
    void addFormats();
    /// How many buffers, and where they may lie.
    void addBuffers();
    /// What is to come with the pictures: counts, changes, the pointer, how the monitor is turned.
    void addMetadata();

    [[nodiscard]] std::vector<const spa_pod *> &all() { return m_params; }

private:
    void begin(std::uint32_t type, std::uint32_t id);
    void end();
    void addId(std::uint32_t key, std::uint32_t value);
    void addIntChoice(std::uint32_t key, std::uint32_t kind, std::initializer_list<std::size_t> values);
    void addMeta(std::uint32_t type, std::initializer_list<std::size_t> sizes);

    std::array<std::uint8_t, 4096> m_memory {};
    spa_pod_builder m_builder {};
    spa_pod_frame m_frame {};
    std::vector<const spa_pod *> m_params;
};

} // namespace vornic
