#pragma once

#include "options/logo/logo_font.h"

#include <QPainterPath>
#include <QString>

#include <vector>

namespace vornic {

/// The outlines of \a text on one line as it was typed, with substitute faces for letters that the font does not have;
/// otherwise as glyphOutlines() gives those of single-byte characters, and like them for ASCII. Glyphs that are pictures
/// themselves, as some faces have them for emoji, have no outline. Needs a QGuiApplication.
[[nodiscard]] std::vector<QPainterPath>
unicodeOutlines(const QString &text, const ScaledFont &font, double spacing);

} // namespace vornic
