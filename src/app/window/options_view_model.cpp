#include "app/window/options_view_model.h"

#include "options/VNOption.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vornic {

namespace {

constexpr qint64 otherSize = 0;
constexpr std::array usualSizes { QSize(1280, 720), QSize(1920, 1080) };
constexpr double opaque = 255;

/// Of presets from the one after "other" on; the last is the whole display.
QSizeF presetSize(qint64 index)
{
    const QSizeF display = VNOption::screenFrame().size();
    const auto usual = static_cast<size_t>(index - otherSize - 1);
    return usual < usualSizes.size() ? QSizeF(usualSizes.at(usual)).boundedTo(display) : display;
}

} // namespace

OptionsViewModel::OptionsViewModel(VNOption &options)
    : m_options(options)
{
    connect(&options, &VNOption::selectedRectChanged, this, &OptionsViewModel::rectangleChanged);
    connect(options.logoContext(),
            &VNLogoContext::LogoTransparencyChanged,
            this,
            &OptionsViewModel::logoOpacityChanged);
}

double OptionsViewModel::top() const
{
    return VNOption::screenHeight() - m_options.offsetY() - m_options.height();
}

void OptionsViewModel::setTop(double top)
{
    m_options.setOffsetY(VNOption::screenHeight() - top - m_options.height());
}

QStringList OptionsViewModel::sizePresetTitles()
{
    QStringList titles { tr("Other") };
    for (const QSize size : usualSizes)
        titles += QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
    return titles << tr("Whole display");
}

qint64 OptionsViewModel::sizePreset() const
{
    const QSizeF size = m_options.selectedRect().size();
    const qint64 count = sizePresetTitles().size();
    // The display itself before a size that it is cut to.
    if (size == presetSize(count - 1))
        return count - 1;
    for (qint64 index = otherSize + 1; index < count; ++index) {
        if (size == presetSize(index))
            return index;
    }
    return otherSize;
}

void OptionsViewModel::setSizePreset(qint64 index)
{
    if (index <= otherSize || index >= sizePresetTitles().size())
        return;
    const QRectF display = VNOption::screenFrame();
    QRectF rectangle(QPointF(), presetSize(index));
    rectangle.moveCenter(m_options.selectedRect().center());
    const auto within = [](double start, double length, double room) {
        return std::clamp(std::floor(start), 0.0, room - length);
    };
    rectangle.moveTo(within(rectangle.x(), rectangle.width(), display.width()),
                     within(rectangle.y(), rectangle.height(), display.height()));
    m_options.setSelectedRect(rectangle);
    emit sizePresetChosen();
}

double OptionsViewModel::logoOpacity() const
{
    return std::round(static_cast<double>(m_options.logoContext()->LogoTransparency()) * 100 / opaque);
}

void OptionsViewModel::setLogoOpacity(double percent)
{
    m_options.logoContext()->setLogoTransparency(std::llround(percent * opaque / 100));
}

} // namespace vornic
