#pragma once

#include "display/display_backend.h"

namespace vornic {

/// The display of a machine that has none: id 0, empty size, no images.
///
/// Made by the table of backends when no other works; carries the sentence that tells the user why.
class NullDisplay final : public DisplayBackend
{
public:
    explicit NullDisplay(QString reason);

    [[nodiscard]] const QString &reason() const { return m_reason; }

    [[nodiscard]] std::uint32_t mainDisplayId() const override { return 0; }
    [[nodiscard]] QSize mainDisplaySize() const override { return { 0, 0 }; }
    [[nodiscard]] std::shared_ptr<const BitmapImage> grab(const QRect &rectangle) override;
    [[nodiscard]] QPoint pointerPosition() override { return {}; }
    [[nodiscard]] std::shared_ptr<const CursorShape> cursorShape() override { return nullptr; }

private:
    const QString m_reason;
};

} // namespace vornic
