#include "display/null_display.h"

#include "display/bitmap_image.h"

#include <utility>

namespace vornic {

NullDisplay::NullDisplay(QString reason)
    : m_reason(std::move(reason))
{
}

std::shared_ptr<const BitmapImage> NullDisplay::grab(const QRect & /*rectangle*/)
{
    return nullptr;
}

} // namespace vornic
