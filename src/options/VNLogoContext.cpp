#include "options/VNLogoContext.h"

#include "base/keyed_archive.h"
#include "options/archived_values.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vornic {

using namespace Qt::StringLiterals;

namespace {

/// Truncated towards zero; a number that 64 bits cannot hold becomes the nearest that they can, NaN 0.
qint64 truncatedToInt64(float value)
{
    if (std::isnan(value))
        return 0;
    constexpr float firstBeyond = 9223372036854775808.F;
    if (value >= firstBeyond)
        return std::numeric_limits<qint64>::max();
    if (value < -firstBeyond)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

/// \a value in single precision; what is beyond it, where a conversion would be undefined, at its limit.
float narrowed(double value)
{
    constexpr double maximum = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -maximum, maximum));
}

/// As much of \a text as the field for it takes: a longer one was not typed, and takes minutes to draw.
QString capped(const QString &text)
{
    constexpr qsizetype longest = 32767;
    return text.size() > longest ? text.first(longest) : text;
}

} // namespace

VNLogoContext::VNLogoContext()
    : mLogoText(QStringLiteral("Sample Text"))
    , mLogoTransparency(255)
    , mLogoPosition(150, 100)
    , mLogoScale(1)
    , mLogoFontFillColor(Qt::green)
    , mLogoFontStrokeColor(Qt::blue)
{
    declareDependencies();
}

VNLogoContext::VNLogoContext(const KeyedUnarchiver &coder)
    : mLogoValidate(coder.decodeBool("mLogoValidate"_L1))
    , mLogoType(coder.decodeInt32("mLogoType"_L1))
    , mLogoText(capped(coder.decodeString("mLogoText"_L1).value_or(QString())))
    , mLogoTransparency(truncatedToInt64(coder.decodeFloat("mLogoTransparency"_L1)))
    , mLogoPosition(coder.decodePoint("mLogoPosition"_L1))
    , mLogoScale(static_cast<double>(coder.decodeFloat("mLogoScale"_L1)))
    , mLogoRotation(coder.decodeInt64("mLogoRotation"_L1))
    , mLogoFontFillColor(decodeColor(coder, "mLogoFontFillColor"_L1))
    , mLogoFontStrokeColor(decodeColor(coder, "mLogoFontStrokeColor"_L1))
{
    if (const auto attributes = coder.decodeObject("mLogoFontAttr"_L1))
        mLogoFontAttr = TextAttributes { decodeFont(*attributes, "font"_L1) };
    mLogoImage = decodePicture(coder, "mLogoImage"_L1);
    declareDependencies();
}

VNLogoContext::~VNLogoContext() = default;

std::unique_ptr<VNLogoContext> VNLogoContext::createWithCoder(const KeyedUnarchiver &coder)
{
    return std::unique_ptr<VNLogoContext>(new VNLogoContext(coder));
}

void VNLogoContext::encodeWithCoder(KeyedArchiver &coder) const
{
    coder.encodeBool("mLogoValidate"_L1, mLogoValidate);
    coder.encodeInt32("mLogoType"_L1, mLogoType);
    if (!mLogoText.isNull())
        coder.encodeString("mLogoText"_L1, mLogoText);
    coder.encodePoint("mLogoPosition"_L1, mLogoPosition);
    coder.encodeFloat("mLogoScale"_L1, narrowed(mLogoScale));
    coder.encodeFloat("mLogoTransparency"_L1, static_cast<float>(mLogoTransparency));
    encodeColor(coder, "mLogoFontFillColor"_L1, mLogoFontFillColor);
    encodeColor(coder, "mLogoFontStrokeColor"_L1, mLogoFontStrokeColor);
    coder.encodeInt64("mLogoRotation"_L1, mLogoRotation);
    if (mLogoFontAttr) {
        coder.encodeObject("mLogoFontAttr"_L1, [this](KeyedArchiver &attributes) {
            if (mLogoFontAttr->font)
                encodeFont(attributes, "font"_L1, *mLogoFontAttr->font);
        });
    }
    encodePicture(coder, "mLogoImage"_L1, mLogoImage);
}

void VNLogoContext::declareDependencies()
{
    for (const char *key : { "LogoPosition", "logoPositionX", "logoPositionY" })
        declareDependency(key, keyPathsForValuesAffectingValueForKey(key));
    declareDependency("logoOffsetX", { "LogoPosition" });
    declareDependency("logoOffsetY", { "LogoPosition" });
}

QByteArrayList VNLogoContext::keyPathsForValuesAffectingValueForKey(const QByteArray &key)
{
    if (key == "LogoPosition")
        return { "logoPositionX", "logoPositionY" };
    if (key == "logoPositionX" || key == "logoPositionY")
        return { "LogoPosition" };
    return {};
}

void VNLogoContext::setLogoValidate(bool validate)
{
    mLogoValidate = validate;
    notifyChanged({ "LogoValidate" });
}

void VNLogoContext::setLogoType(int type)
{
    mLogoType = type;
    // Two faces of one field, told together.
    notifyChanged({ "LogoType", "isLogoTypeText" });
}

void VNLogoContext::setIsLogoTypeText(bool isText)
{
    setLogoType(static_cast<int>(isText ? vornic::LogoType::Text : vornic::LogoType::Picture));
}

QString VNLogoContext::LogoText() const
{
    const std::scoped_lock lock(m_atomicProperties);
    return mLogoText;
}

void VNLogoContext::setLogoText(const QString &text)
{
    QString other = text;
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoText.swap(other); // the old text is let go outside the lock
    }
    notifyChanged({ "LogoText" });
}

QPointF VNLogoContext::LogoPosition() const
{
    const std::scoped_lock lock(m_atomicProperties);
    return mLogoPosition;
}

void VNLogoContext::setLogoPosition(QPointF position)
{
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoPosition = position;
    }
    notifyChanged({ "LogoPosition" });
}

void VNLogoContext::setLogoPositionX(double x)
{
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoPosition.setX(x);
    }
    notifyChanged({ "logoPositionX" });
}

void VNLogoContext::setLogoPositionY(double y)
{
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoPosition.setY(y);
    }
    notifyChanged({ "logoPositionY" });
}

void VNLogoContext::setLogoTransparency(qint64 transparency)
{
    mLogoTransparency = transparency;
    notifyChanged({ "LogoTransparency" });
}

void VNLogoContext::setLogoScale(double scale)
{
    mLogoScale = scale;
    notifyChanged({ "LogoScale" });
}

void VNLogoContext::setLogoRotation(qint64 rotation)
{
    mLogoRotation = rotation;
    notifyChanged({ "LogoRotation" });
}

QColor VNLogoContext::LogoFontFillColor() const
{
    const std::scoped_lock lock(m_atomicProperties);
    return mLogoFontFillColor;
}

void VNLogoContext::setLogoFontFillColor(const QColor &color)
{
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoFontFillColor = color;
    }
    notifyChanged({ "LogoFontFillColor" });
}

QColor VNLogoContext::LogoFontStrokeColor() const
{
    const std::scoped_lock lock(m_atomicProperties);
    return mLogoFontStrokeColor;
}

void VNLogoContext::setLogoFontStrokeColor(const QColor &color)
{
    {
        const std::scoped_lock lock(m_atomicProperties);
        mLogoFontStrokeColor = color;
    }
    notifyChanged({ "LogoFontStrokeColor" });
}

TextAttributes VNLogoContext::fontAttrs()
{
    if (!mLogoFontAttr)
        mLogoFontAttr = TextAttributes { defaultLogoFont() };
    return *mLogoFontAttr;
}

void VNLogoContext::setFontAttrs(const TextAttributes &attributes)
{
    mLogoFontAttr = attributes;
}

void VNLogoContext::setPicture(const Picture &picture)
{
    if (picture.isNull())
        return;
    mLogoImage = picture;
    emit logoImageChanged();
    if (picture.isScaledDown())
        emit pictureScaledDown(picture.fileName(), picture.originalSize(), picture.image().size());
}

ScaledFont VNLogoContext::scaledLogoFont(double scale) const
{
    const QFont font = mLogoFontAttr ? mLogoFontAttr->font.value_or(defaultLogoFont()) : defaultLogoFont();
    return ScaledFont::create(font, fontSizePx(font) * mLogoScale * scale);
}

QRectF VNLogoContext::getLogoRect() const
{
    const QPointF position = LogoPosition();
    if (!isLogoTypeText()) // no picture times any scale, be it infinite, is no size
        return { position, mLogoImage.isNull() ? QSizeF(0, 0) : QSizeF(getNSImage().size()) * mLogoScale };
    const QSizeF text = singleLineSize(LogoText(), scaledLogoFont(1));
    return { position, QSizeF(2 * text.width(), text.height()) };
}

} // namespace vornic
