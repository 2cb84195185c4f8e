#include "options/logo/unicode_text.h"

#include <QGlyphRun>
#include <QList>
#include <QRawFont>
#include <QTextLayout>
#include <QTransform>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

/// Letters one by one on one line, from left to right as they are seen.
void lay(QTextLayout &layout)
{
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    constexpr double enough = 1e7;
    line.setLineWidth(enough);
    line.setPosition({ 0, -line.ascent() });
    layout.endLayout();
}

QString onOneLine(QString text)
{
    std::ranges::replace_if(
        text,
        [](QChar c) {
            return c.unicode() < 0x20 || c == QChar::ParagraphSeparator || c == QChar::LineSeparator;
        },
        QChar(u' '));
    return text;
}

} // namespace

std::vector<QPainterPath> unicodeOutlines(const QString &text, const ScaledFont &font, double spacing)
{
    if (font.factor <= 0 || text.isEmpty())
        return {};
    QFont unhinted = font.font;
    unhinted.setHintingPreference(QFont::PreferNoHinting);
    unhinted.setKerning(false);
    unhinted.setLetterSpacing(QFont::AbsoluteSpacing, spacing / font.factor);
    QTextLayout layout(onOneLine(text), unhinted);
    lay(layout);
    std::vector<QPainterPath> outlines;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            const QPointF position = positions[i] * font.factor;
            const QTransform place(font.factor, 0, 0, -font.factor, position.x(), -position.y());
            QPainterPath outline = place.map(run.rawFont().pathForGlyph(glyphs[i]));
            outline.setFillRule(Qt::WindingFill);
            if (!outline.isEmpty())
                outlines.push_back(std::move(outline));
        }
    }
    return outlines;
}

} // namespace vornic
