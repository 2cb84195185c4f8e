#pragma once

#include "options/logo/logo_font.h"

#include <QPainterPath>
#include <QString>

#include <vector>

namespace vornic {

/// The characters that appear where \a text is drawn with a single-byte encoding (Mac Roman): one for each byte
/// of its UTF-8 form, but only as many as the text has UTF-16 code units. ASCII stays what it is; other
/// text loses its end.
[[nodiscard]] QString singleByteCharacters(const QString &text);

/// Whether that draws \a text as it was typed: other letters than those of ASCII become others, or vanish.
[[nodiscard]] bool isDrawnAsTyped(const QString &text);

/// The outlines of \a characters on one line, one by one, from the start of the baseline at (0, 0), in points
/// with y up; nothing for characters that leave no ink. Each glyph stands alone, without kerning or
/// substitute faces, \a spacing points behind the advance of the one before, whatever the size of the font.
/// Needs a QGuiApplication.
[[nodiscard]] std::vector<QPainterPath>
glyphOutlines(const QString &characters, const ScaledFont &font, double spacing);

} // namespace vornic
