#pragma once

#include <QFont>
#include <QSizeF>
#include <QString>

#include <optional>

namespace vornic {

/// The attributes of a logo's text. Without a font the default one is drawn.
struct TextAttributes {
    std::optional<QFont> font;

    friend bool operator==(const TextAttributes &, const TextAttributes &) = default;
};

/// "Helvetica Neue" at 20, by name: whether that face is installed is asked when it is drawn.
[[nodiscard]] QFont defaultLogoFont();

/// The size of \a font in device pixels. Points are device pixels, so one set in points counts the same.
[[nodiscard]] double fontSizePx(const QFont &font);

/// \a font with an installed face: itself where its family is installed, else the closest known stand-in. The
/// only place that decides on faces, asked when text is measured or drawn; what is stored keeps its name.
[[nodiscard]] QFont withInstalledFace(const QFont &font);

/// A font of any size, as the toolkit can draw it: fonts have whole pixel sizes, the factor does the rest.
struct ScaledFont {
    QFont font;
    double factor = 0; ///< to draw and measure with; 0 draws nothing

    /// \a font with an installed face at \a sizePx device pixels; nothing to draw unless that is above zero.
    [[nodiscard]] static ScaledFont create(const QFont &font, double sizePx);
};

/// The advance width and the line height of \a text on one line, in device pixels; no size for a null text.
[[nodiscard]] QSizeF singleLineSize(const QString &text, const ScaledFont &font);

} // namespace vornic
