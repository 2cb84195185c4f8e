#include "options/VNOption.h"

#include "base/keyed_archive.h"
#include "display/main_display.h"
#include "geometry/y_up.h"

#include <algorithm>

namespace vornic {

using namespace Qt::StringLiterals;

namespace {

constexpr int fullLevel = 100;
constexpr int usualStopAfter = 10 * 60;

/// The upper bound is applied last, and so wins where the bounds cross.
double clamped(double value, double lower, double upper)
{
    if (lower > value)
        value = lower;
    if (value > upper)
        value = upper;
    return value;
}

/// Stored is by how much it differs from the full level, so that zero stands for that.
int levelFrom(const KeyedUnarchiver &coder, QLatin1StringView key)
{
    const std::int64_t percent = std::int64_t { fullLevel } + coder.decodeInt32(key);
    return static_cast<int>(std::clamp<std::int64_t>(percent, 0, VNOption::maxLevel));
}

/// Stored in the same way.
int stopAfterFrom(const KeyedUnarchiver &coder)
{
    const std::int64_t seconds = std::int64_t { usualStopAfter } + coder.decodeInt32("stopAfterChange"_L1);
    return static_cast<int>(std::clamp<std::int64_t>(seconds, 1, VNOption::maxStopAfter));
}

} // namespace

VNOption::VNOption()
    : _selectedRect((screenWidth() - 800) * 0.5, (screenHeight() - 600) * 0.5, 800, 600)
    , _showInFinder(true)
{
    declareDependencies();
}

VNOption::VNOption(const KeyedUnarchiver &coder)
    : _recordRegion(coder.decodeInt32("_recordRegion"_L1))
    , _selectedRect(coder.decodeRect("_recordBounds"_L1))
    , _enableAudio(coder.decodeBool("_enableAudio"_L1))
    , m_recordsSystemSound(coder.decodeBool("recordsSystemSound"_L1))
    , m_inputLevel(levelFrom(coder, "inputLevelChange"_L1))
    , m_systemLevel(levelFrom(coder, "systemLevelChange"_L1))
    , m_stopsAfterTime(coder.decodeBool("stopsAfterTime"_L1))
    , m_stopAfter(stopAfterFrom(coder))
    , _showInFinder(coder.decodeBool("_showInFinder"_L1))
    , _openRecorded(coder.decodeBool("_openRecorded"_L1))
    , _recordQuality(coder.decodeInt32("_recordQuality"_L1))
{
    if (const auto logoContext = coder.decodeObject("_logoContext"_L1))
        _logoContext = VNLogoContext::createWithCoder(*logoContext);
    declareDependencies();
}

VNOption::~VNOption() = default;

std::unique_ptr<VNOption> VNOption::createWithCoder(const KeyedUnarchiver &coder)
{
    return std::unique_ptr<VNOption>(new VNOption(coder));
}

void VNOption::encodeWithCoder(KeyedArchiver &coder) const
{
    if (_logoContext)
        coder.encodeObject("_logoContext"_L1,
                           [this](KeyedArchiver &logo) { _logoContext->encodeWithCoder(logo); });
    coder.encodeRect("_recordBounds"_L1, _selectedRect);
    coder.encodeInt32("_recordQuality"_L1, _recordQuality);
    coder.encodeInt32("_recordRegion"_L1, _recordRegion);
    coder.encodeBool("_enableAudio"_L1, _enableAudio);
    coder.encodeBool("_showInFinder"_L1, _showInFinder);
    coder.encodeBool("_openRecorded"_L1, _openRecorded);
    coder.encodeBool("recordsSystemSound"_L1, m_recordsSystemSound);
    coder.encodeInt32("inputLevelChange"_L1, m_inputLevel - fullLevel);
    coder.encodeInt32("systemLevelChange"_L1, m_systemLevel - fullLevel);
    coder.encodeBool("stopsAfterTime"_L1, m_stopsAfterTime);
    coder.encodeInt32("stopAfterChange"_L1, m_stopAfter - usualStopAfter);
}

void VNOption::declareDependencies()
{
    declareDependency("isRecordFullScreen", keyPathsForValuesAffectingIsRecordFullScreen());
    declareDependency("width", keyPathsForValuesAffectingWidth());
    declareDependency("height", keyPathsForValuesAffectingHeight());
    declareDependency("offsetX", keyPathsForValuesAffectingOffsetX());
    declareDependency("offsetY", keyPathsForValuesAffectingOffsetY());
    declareDependency("maxWidth", keyPathsForValuesAffectingMaxWidth());
    declareDependency("maxHeight", keyPathsForValuesAffectingMaxHeight());
    declareDependency("maxOffsetX", keyPathsForValuesAffectingMaxOffsetX());
    declareDependency("maxOffsetY", keyPathsForValuesAffectingMaxOffsetY());
    declareDependency("selectedRect", keyPathsForValuesAffectingSelectedRect());
}

QByteArrayList VNOption::keyPathsForValuesAffectingIsRecordFullScreen()
{
    return { "recordRegion" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingWidth()
{
    return { "selectedRect" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingHeight()
{
    return { "selectedRect" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingOffsetX()
{
    return { "selectedRect" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingOffsetY()
{
    return { "selectedRect" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingMaxWidth()
{
    return { "offsetX" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingMaxHeight()
{
    return { "offsetY" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingMaxOffsetX()
{
    return { "width" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingMaxOffsetY()
{
    return { "height" };
}
QByteArrayList VNOption::keyPathsForValuesAffectingSelectedRect()
{
    return { "height", "width", "offsetX", "offsetY" };
}

void VNOption::setRecordRegion(int region)
{
    _recordRegion = region;
    notifyChanged({ "recordRegion" });
}

void VNOption::setIsRecordFullScreen(bool fullScreen)
{
    setRecordRegion(fullScreen ? 0 : 1);
}

void VNOption::setRecordQuality(int quality)
{
    _recordQuality = quality;
    notifyChanged({ "recordQuality" });
}

void VNOption::setEnableAudio(bool enable)
{
    _enableAudio = enable;
    notifyChanged({ "enableAudio" });
}

void VNOption::setRecordsSystemSound(bool records)
{
    m_recordsSystemSound = records;
    notifyChanged({ "recordsSystemSound" });
}

void VNOption::setInputLevel(int percent)
{
    m_inputLevel = std::clamp(percent, 0, maxLevel);
    notifyChanged({ "inputLevel" });
}

void VNOption::setSystemLevel(int percent)
{
    m_systemLevel = std::clamp(percent, 0, maxLevel);
    notifyChanged({ "systemLevel" });
}

void VNOption::setStopsAfterTime(bool stops)
{
    m_stopsAfterTime = stops;
    notifyChanged({ "stopsAfterTime" });
}

void VNOption::setStopAfter(double seconds)
{
    m_stopAfter = static_cast<int>(std::clamp(seconds, 1.0, double { maxStopAfter }));
    notifyChanged({ "stopAfter" });
}

void VNOption::setShowInFinderWhenFinished(bool show)
{
    _showInFinder = show;
    notifyChanged({ "showInFinderWhenFinished" });
}

void VNOption::setOpenRecordedWhenFinished(bool open)
{
    _openRecorded = open;
    notifyChanged({ "openRecordedWhenFinished" });
}

VNLogoContext *VNOption::logoContext()
{
    if (!_logoContext)
        _logoContext = std::make_unique<VNLogoContext>();
    return _logoContext.get();
}

void VNOption::setSelectedRect(const QRectF &rectangle)
{
    _selectedRect = rectangle;
    notifyChanged({ "selectedRect" });
}

void VNOption::setOffsetX(double x)
{
    _selectedRect.moveLeft(clamped(x, minOffsetX(), maxOffsetX()));
    notifyChanged({ "offsetX" });
}

void VNOption::setOffsetY(double y)
{
    _selectedRect.moveTop(clamped(y, minOffsetY(), maxOffsetY()));
    notifyChanged({ "offsetY" });
}

void VNOption::setWidth(double width)
{
    _selectedRect.setWidth(clamped(width, minWidth(), maxWidth()));
    notifyChanged({ "width" });
}

void VNOption::setHeight(double height)
{
    _selectedRect.setHeight(clamped(height, minHeight(), maxHeight()));
    notifyChanged({ "height" });
}

QRectF VNOption::screenFrame()
{
    return mainDisplayFrame();
}

double VNOption::screenWidth()
{
    return screenFrame().width();
}

double VNOption::screenHeight()
{
    return screenFrame().height();
}

QPointF VNOption::convertScreenPointToQuartz(QPointF point)
{
    return flipped(point, screenHeight());
}

QPointF VNOption::convertScreenPointFromQuartz(QPointF point)
{
    return convertScreenPointToQuartz(point);
}

QRectF VNOption::convertScreenRectToQuartz(const QRectF &rectangle)
{
    return flipped(rectangle, screenHeight());
}

QRectF VNOption::convertScreenRectFromQuartz(const QRectF &rectangle)
{
    return convertScreenRectToQuartz(rectangle);
}

} // namespace vornic
