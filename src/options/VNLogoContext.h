#pragma once

#include "observing/observable_object.h"
#include "options/logo/logo_font.h"
#include "options/logo/reduced_picture.h"
#include "pictures/picture.h"

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class QPainter;
class QPainterPath;
class QTransform;

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// What a logo shows. A stored number may be neither of the two: such a logo is drawn as a picture, but its outline
/// turns about its lower left, as a text's does, and it takes no dropped pictures.
enum class LogoType : std::int32_t { Text = 0, Picture = 1 };

/// A logo's text as a picture, and what the logo's properties have to be so that its letters stand where the text's do.
struct PictureOfText {
    QImage image; ///< null where nothing is drawn
    QPointF position;
    double scale = 1;
};

/// The user's logo: whether it is stamped, its text with font and colours or its picture, and its place.
///
/// Made by the options that own it, and lives on the main thread. LogoValidate, the text, the position and
/// the colours may be read from any thread: the one that composes a movie's frames is handed this object, though
/// it needs nothing of it as long as the logo is in the captured pictures.
class VNLogoContext : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(bool LogoValidate READ LogoValidate WRITE setLogoValidate NOTIFY LogoValidateChanged)
    Q_PROPERTY(int LogoType READ LogoType WRITE setLogoType NOTIFY LogoTypeChanged)
    Q_PROPERTY(bool isLogoTypeText READ isLogoTypeText WRITE setIsLogoTypeText NOTIFY isLogoTypeTextChanged)
    Q_PROPERTY(QString LogoText READ LogoText WRITE setLogoText NOTIFY LogoTextChanged)
    Q_PROPERTY(QPointF LogoPosition READ LogoPosition WRITE setLogoPosition NOTIFY LogoPositionChanged)
    Q_PROPERTY(double logoPositionX READ logoPositionX WRITE setLogoPositionX NOTIFY logoPositionXChanged)
    Q_PROPERTY(double logoPositionY READ logoPositionY WRITE setLogoPositionY NOTIFY logoPositionYChanged)
    Q_PROPERTY(double logoOffsetX READ logoOffsetX WRITE setLogoOffsetX NOTIFY logoOffsetXChanged)
    Q_PROPERTY(double logoOffsetY READ logoOffsetY WRITE setLogoOffsetY NOTIFY logoOffsetYChanged)
    Q_PROPERTY(qint64 LogoTransparency READ LogoTransparency WRITE setLogoTransparency NOTIFY
                   LogoTransparencyChanged)
    Q_PROPERTY(double LogoScale READ LogoScale WRITE setLogoScale NOTIFY LogoScaleChanged)
    Q_PROPERTY(qint64 LogoRotation READ LogoRotation WRITE setLogoRotation NOTIFY LogoRotationChanged)
    Q_PROPERTY(QColor LogoFontFillColor READ LogoFontFillColor WRITE setLogoFontFillColor NOTIFY
                   LogoFontFillColorChanged)
    Q_PROPERTY(QColor LogoFontStrokeColor READ LogoFontStrokeColor WRITE setLogoFontStrokeColor NOTIFY
                   LogoFontStrokeColorChanged)
public:
    VNLogoContext();
    ~VNLogoContext() override;

    /// Never null: what the archive does not hold is zero, not the default.
    [[nodiscard]] static std::unique_ptr<VNLogoContext> createWithCoder(const KeyedUnarchiver &coder);
    void encodeWithCoder(KeyedArchiver &coder) const;

    [[nodiscard]] bool LogoValidate() const { return mLogoValidate; }
    void setLogoValidate(bool validate);
    /// The number of a vornic::LogoType, or any other that an archive held.
    [[nodiscard]] int LogoType() const { return mLogoType; }
    void setLogoType(int type);
    /// LogoType by name, for all who decide by it.
    [[nodiscard]] vornic::LogoType type() const { return static_cast<vornic::LogoType>(mLogoType); }
    /// Text or, with any other number, a picture.
    [[nodiscard]] bool isLogoTypeText() const { return type() == vornic::LogoType::Text; }
    void setIsLogoTypeText(bool isText);
    /// Null when the archive it came from held none.
    [[nodiscard]] QString LogoText() const;
    void setLogoText(const QString &text);
    /// From the lower left of the surface that is drawn on, y up: the lower left of the unrotated picture, or the
    /// start of the text's baseline.
    [[nodiscard]] QPointF LogoPosition() const;
    void setLogoPosition(QPointF position);
    [[nodiscard]] double logoPositionX() const { return LogoPosition().x(); }
    void setLogoPositionX(double x);
    [[nodiscard]] double logoPositionY() const { return LogoPosition().y(); }
    void setLogoPositionY(double y);
    /// How far the overlay's view, in which LogoPosition counts, reaches past the recorded rectangle on each side.
    static constexpr double margin = 8;
    /// LogoPosition as the movie shows it: from the lower left of the recorded rectangle.
    [[nodiscard]] double logoOffsetX() const { return logoPositionX() - margin; }
    void setLogoOffsetX(double x) { setLogoPositionX(x + margin); }
    [[nodiscard]] double logoOffsetY() const { return logoPositionY() - margin; }
    void setLogoOffsetY(double y) { setLogoPositionY(y + margin); }
    /// 0 is invisible, 255 opaque; numbers beyond are kept, and drawn as the nearer of the two.
    [[nodiscard]] qint64 LogoTransparency() const { return mLogoTransparency; }
    void setLogoTransparency(qint64 transparency);
    [[nodiscard]] double LogoScale() const { return mLogoScale; }
    void setLogoScale(double scale);
    /// Whole degrees, counter-clockwise with y up.
    [[nodiscard]] qint64 LogoRotation() const { return mLogoRotation; }
    void setLogoRotation(qint64 rotation);
    /// Invalid when the archive it came from held none; so is the stroke colour.
    [[nodiscard]] QColor LogoFontFillColor() const;
    void setLogoFontFillColor(const QColor &color);
    [[nodiscard]] QColor LogoFontStrokeColor() const;
    void setLogoFontStrokeColor(const QColor &color);

    /// Created with the default font at the first call.
    [[nodiscard]] TextAttributes fontAttrs();
    void setFontAttrs(const TextAttributes &attributes);

    /// The picture at one pixel a point, or a null image.
    [[nodiscard]] QImage getNSImage() const { return mLogoImage.image(); }
    /// Keeps the picture's pixels; a null image changes nothing.
    void setNSImage(const QImage &image) { setPicture(Picture(image)); }
    /// The same with the file that the pixels came from, which is then archived as it is.
    void setPicture(const Picture &picture);

    /// The unrotated logo, scaled, in the coordinates of LogoPosition. A text logo's is twice as wide as the
    /// text measures: its letters are drawn with extra space between them. Needs a QGuiApplication.
    [[nodiscard]] QRectF getLogoRect() const;

    /// Draws the logo, whatever LogoValidate says, with a painter that has y up; its state is as before
    /// afterwards. \a bound is in the painter's coordinates: positions count from its lower left, in units of
    /// \a scale. Main thread; needs a QGuiApplication.
    void decorateImage(QPainter &context, const QRectF &bound, double scale) const;
    /// The same at \a opacity, 0 to 1, in place of LogoTransparency.
    void decorateAtOpacity(double opacity, QPainter &context, const QRectF &bound, double scale) const;
    /// What decorateImage() draws lies within this rectangle, or nowhere where it is empty; y up.
    [[nodiscard]] QRectF decoratedRect(const QRectF &bound, double scale) const;
    /// An opaque copy of \a image, one point a pixel, with the logo on it, whatever LogoValidate says; null for a
    /// null image.
    [[nodiscard]] QImage decorateCGImage(const QImage &image) const;
    /// The same, but \a image itself when LogoValidate is off.
    [[nodiscard]] QImage decorateNSImage(const QImage &image) const;

    /// The text, letter by letter as it was typed, with its font, colours, spacing and outline; opaque, unrotated, and no
    /// larger than its ink. Main thread; needs a QGuiApplication.
    [[nodiscard]] PictureOfText pictureOfText() const;

    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingValueForKey(const QByteArray &key);

signals:
    void LogoValidateChanged();
    void LogoTypeChanged();
    void isLogoTypeTextChanged();
    void LogoTextChanged();
    void LogoPositionChanged();
    void logoPositionXChanged();
    void logoPositionYChanged();
    void logoOffsetXChanged();
    void logoOffsetYChanged();
    void LogoTransparencyChanged();
    void LogoScaleChanged();
    void LogoRotationChanged();
    void LogoFontFillColorChanged();
    void LogoFontStrokeColorChanged();
    /// There is another picture.
    void logoImageChanged();
    /// And it has fewer pixels than it was given with. \a fileName is empty for pixels without a file.
    void pictureScaledDown(const QString &fileName, QSize original, QSize scaled);

private:
    explicit VNLogoContext(const KeyedUnarchiver &coder);

    void declareDependencies();
    /// The stored font, or the default one where none is stored, at its size times LogoScale times \a scale.
    [[nodiscard]] ScaledFont scaledLogoFont(double scale) const;
    [[nodiscard]] QPointF anchor(const QRectF &bound, double scale) const;
    [[nodiscard]] QTransform rotation() const;
    /// The scaled picture about (0, 0).
    [[nodiscard]] QRectF centredPicture(double scale) const;
    [[nodiscard]] QTransform pictureTransform(const QRectF &bound, double scale) const;
    void drawPicture(QPainter &context, const QRectF &bound, double scale) const;
    /// The letters where they are drawn, rotated.
    [[nodiscard]] std::vector<QPainterPath> textOutlines(const QRectF &bound, double scale) const;

    mutable std::mutex m_atomicProperties; ///< guards the text, the position and the two colours
    std::atomic<bool> mLogoValidate = false;
    int mLogoType = 0;
    QString mLogoText;
    Picture mLogoImage;
    mutable ReducedPicture m_reducedPicture; ///< what mLogoImage was drawn with last
    qint64 mLogoTransparency = 0;
    QPointF mLogoPosition;
    double mLogoScale = 0;
    qint64 mLogoRotation = 0;
    std::optional<TextAttributes> mLogoFontAttr;
    QColor mLogoFontFillColor;
    QColor mLogoFontStrokeColor;
};

} // namespace vornic
