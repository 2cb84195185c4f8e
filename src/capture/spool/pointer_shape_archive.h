#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace vornic {

struct CursorShape;

/// A pointer shape for the journal: its picture and hot spot, and the \a index that frame records know it by.
[[nodiscard]] QByteArray pointerShapeArchive(std::uint64_t index, const CursorShape &shape);
/// Nothing where \a archive is damaged or holds a picture of more than 1024 x 1024 pixels.
[[nodiscard]] std::optional<std::pair<std::uint64_t, std::shared_ptr<const CursorShape>>>
pointerShapeFromArchive(QByteArrayView archive);

} // namespace vornic
