// make_help_pdf HELP.md ICON.png HELP.pdf: sets the help text, with its pictures, as a document of A4 pages.

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextTable>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

constexpr int resolution = 1200; ///< dots an inch: letters stand where they should
constexpr double millimetre = resolution / 25.4;
constexpr double pageWidth = 210 * millimetre;
constexpr double pageHeight = 297 * millimetre;
constexpr double sideMargin = 24 * millimetre;
constexpr double verticalMargin = 20 * millimetre;
constexpr double bannerHeight = 40 * millimetre;
constexpr double textWidth = pageWidth - 2 * sideMargin;

const QColor ink(0x2b, 0x2e, 0x35);
const QColor quietInk(0x74, 0x79, 0x83);
const QColor headingInk(0xb8, 0x27, 0x22);
const QColor codeGround(0xef, 0xf0, 0xf2);
const QColor bannerGround(0x2a, 0x2c, 0x31);
const QColor bannerInk(0xf4, 0xf5, 0xf7);
const QColor bannerQuietInk(0xb4, 0xb8, 0xc0);

/// The help text: the title and the sentence below it, which stand in the banner, and the rest.
struct Help {
    QString title;
    QString subtitle;
    QString text;
};

/// The lengths in a document's formats are dots of a screen, whatever the document is painted on.
double formatLength(double dots)
{
    constexpr double screenDotsPerInch = 96;
    return dots * screenDotsPerInch / resolution;
}

QFont textFont(double points, QFont::Weight weight = QFont::Normal)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(points);
    font.setWeight(weight);
    return font;
}

std::optional<Help> readHelp(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString text = QString::fromUtf8(file.readAll());
    const QString heading = QStringLiteral("# ");
    const qsizetype titleEnd = text.indexOf(u'\n');
    const qsizetype subtitleEnd = text.indexOf(QStringLiteral("\n\n"), titleEnd + 2);
    if (!text.startsWith(heading) || subtitleEnd < 0)
        return std::nullopt;
    return Help { .title = text.sliced(heading.size(), titleEnd - heading.size()).trimmed(),
                  .subtitle = text.sliced(titleEnd, subtitleEnd - titleEnd).trimmed(),
                  .text = text.sliced(subtitleEnd) };
}

/// Its points stay small, so that it is crisp. False when there is no such picture.
bool fitPicture(const QTextDocument &document, QTextImageFormat &format)
{
    const auto picture = document.resource(QTextDocument::ImageResource, QUrl(format.name())).value<QImage>();
    if (picture.isNull()) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(format.name()));
        return false;
    }
    constexpr double pointsPerInch = 150;
    const double width = std::min(textWidth, picture.width() * resolution / pointsPerInch);
    format.setWidth(formatLength(width));
    format.setHeight(formatLength(width * picture.height() / picture.width()));
    return true;
}

bool styleFragments(const QTextDocument &document, const QTextBlock &block)
{
    bool isWhole = true;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        QTextCharFormat format = fragment.charFormat();
        if (format.isImageFormat()) {
            QTextImageFormat picture = format.toImageFormat();
            isWhole = fitPicture(document, picture) && isWhole;
            format = picture;
        } else if (format.fontFixedPitch()) {
            format.setFontFamilies({ QStringLiteral("DejaVu Sans Mono") });
            format.setFontPointSize(8.5);
            format.setBackground(codeGround);
        } else {
            continue;
        }
        QTextCursor cursor(block);
        cursor.setPosition(fragment.position());
        cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
    return isWhole;
}

void styleHeading(QTextCursor &cursor)
{
    QTextBlockFormat heading;
    heading.setTopMargin(formatLength(7 * millimetre));
    heading.setBottomMargin(formatLength(2 * millimetre));
    cursor.mergeBlockFormat(heading);
    QTextCharFormat letters;
    letters.setFont(textFont(14, QFont::Bold));
    letters.setForeground(headingInk);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    cursor.setCharFormat(letters);
}

bool isPicture(const QTextBlock &block)
{
    return block.begin() != block.end() && block.begin().fragment().charFormat().isImageFormat();
}

/// Below a paragraph.
double gap(const QTextCursor &cursor)
{
    if (cursor.currentTable())
        return 0;
    const QTextBlock next = cursor.block().next();
    const bool goesOn = cursor.currentList() && next.isValid() && next.textList() == cursor.currentList();
    return (goesOn ? 1 : 2.6) * millimetre;
}

void styleParagraph(QTextCursor &cursor)
{
    QTextBlockFormat paragraph;
    constexpr double linePercent = 126;
    if (isPicture(cursor.block()))
        paragraph.setAlignment(Qt::AlignHCenter);
    else
        paragraph.setLineHeight(linePercent, QTextBlockFormat::ProportionalHeight);
    paragraph.setTopMargin(0);
    paragraph.setBottomMargin(formatLength(gap(cursor)));
    cursor.mergeBlockFormat(paragraph);
}

void styleTable(QTextTable &table)
{
    QTextTableFormat format = table.format();
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    format.setBorder(0);
    format.setCellSpacing(0);
    format.setCellPadding(formatLength(1.2 * millimetre));
    format.setTopMargin(formatLength(1 * millimetre));
    format.setBottomMargin(formatLength(3 * millimetre));
    format.setColumnWidthConstraints(
        { QTextLength(QTextLength::PercentageLength, 38), QTextLength(QTextLength::PercentageLength, 62) });
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
        QTextTableCell cell = table.cellAt(0, column);
        QTextCharFormat heading = cell.format();
        heading.setBackground(codeGround);
        cell.setFormat(heading);
    }
}

bool style(QTextDocument &document)
{
    bool isWhole = true;
    QTextTable *lastTable = nullptr;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        QTextTable *table = cursor.currentTable();
        if (table && table != lastTable)
            styleTable(*table);
        lastTable = table;
        if (block.blockFormat().headingLevel() > 0) {
            styleHeading(cursor);
            continue;
        }
        styleParagraph(cursor);
        isWhole = styleFragments(document, block) && isWhole;
    }
    return isWhole;
}

/// An empty first line, as high as the banner reaches into the text.
void makeRoomForBanner(QTextDocument &document)
{
    QTextCursor cursor(&document);
    const QTextBlockFormat first = cursor.blockFormat();
    const QTextCharFormat letters = cursor.blockCharFormat();
    QTextBlockFormat room;
    room.setLineHeight(formatLength(bannerHeight - verticalMargin + 2 * millimetre),
                       QTextBlockFormat::FixedHeight);
    cursor.insertBlock(first, letters);
    cursor.movePosition(QTextCursor::Start);
    cursor.setBlockFormat(room);
}

int pageOf(const QTextBlock &block, bool atEnd)
{
    const QRectF bounds = block.document()->documentLayout()->blockBoundingRect(block);
    return static_cast<int>((atEnd ? bounds.bottom() - 1 : bounds.top()) / pageHeight);
}

/// The last block of what begins with \a block: of a table, which is not to be torn apart, or itself.
QTextBlock lastBlockWith(const QTextBlock &block)
{
    const QTextTable *table = QTextCursor(block).currentTable();
    return table ? table->lastCursorPosition().block() : block;
}

/// No heading stands alone at the end of a page.
void keepHeadingsWithText(QTextDocument &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextBlock next = block.next();
        if (block.blockFormat().headingLevel() == 0 || !next.isValid())
            continue;
        if (pageOf(block, true) == pageOf(lastBlockWith(next), true))
            continue;
        QTextBlockFormat format = block.blockFormat();
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        QTextCursor(block).setBlockFormat(format);
        // The layout would not place again all that follows.
        document.markContentsDirty(0, document.characterCount());
    }
}

void paintBanner(QPainter &painter, const Help &help, const QImage &icon)
{
    painter.fillRect(QRectF(0, 0, pageWidth, bannerHeight), bannerGround);
    constexpr double side = 22 * millimetre;
    painter.drawImage(QRectF(sideMargin, (bannerHeight - side) / 2, side, side), icon);
    constexpr double left = sideMargin + side + 7 * millimetre;
    painter.setFont(textFont(26, QFont::Bold));
    painter.setPen(bannerInk);
    painter.drawText(QPointF(left, bannerHeight / 2 + 0.5 * millimetre), help.title);
    painter.setFont(textFont(10.5));
    painter.setPen(bannerQuietInk);
    painter.drawText(QPointF(left, bannerHeight / 2 + 8 * millimetre), help.subtitle);
}

void paintFooter(QPainter &painter, const QString &title, int page, int pages)
{
    const QRectF footer(sideMargin, pageHeight - 16 * millimetre, textWidth, 6 * millimetre);
    painter.setFont(textFont(8));
    painter.setPen(quietInk);
    painter.drawText(footer, Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.drawText(
        footer, Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1 / %2").arg(page).arg(pages));
}

void paintPages(QPdfWriter &writer, QTextDocument &document, const Help &help, const QImage &icon)
{
    QPainter painter(&writer);
    const int pages = document.pageCount();
    for (int page = 0; page < pages; ++page) {
        if (page > 0)
            writer.newPage();
        else
            paintBanner(painter, help, icon);
        painter.save();
        painter.translate(0, -page * pageHeight);
        const QRectF visible(0, page * pageHeight, pageWidth, pageHeight);
        painter.setClipRect(visible);
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette.setColor(QPalette::Text, ink);
        context.clip = visible;
        document.documentLayout()->draw(&painter, context);
        painter.restore();
        paintFooter(painter, help.title, page + 1, pages);
    }
}

bool makeHelp(const QString &source, const QImage &icon, const QString &destination)
{
    const std::optional<Help> help = readHelp(source);
    if (!help) {
        std::fprintf(stderr, "%s is no help text\n", qPrintable(source));
        return false;
    }
    QPdfWriter writer(destination);
    writer.setResolution(resolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    writer.setTitle(help->title);

    QTextDocument document;
    document.setDefaultFont(textFont(10));
    document.setBaseUrl(QUrl::fromLocalFile(source));
    document.setMarkdown(help->text);
    document.documentLayout()->setPaintDevice(&writer);
    const bool isWhole = style(document);
    makeRoomForBanner(document);
    QTextFrameFormat page = document.rootFrame()->frameFormat();
    page.setMargin(0);
    page.setLeftMargin(formatLength(sideMargin));
    page.setRightMargin(formatLength(sideMargin));
    page.setTopMargin(formatLength(verticalMargin));
    page.setBottomMargin(formatLength(verticalMargin));
    document.rootFrame()->setFrameFormat(page);
    document.setPageSize({ pageWidth, pageHeight });
    keepHeadingsWithText(document);
    paintPages(writer, document, *help, icon);
    return isWhole;
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("make_help_pdf HELP.md ICON.png HELP.pdf\n", stderr);
        return 2;
    }
    return makeHelp(arguments[1], QImage(arguments[2]), arguments[3]) ? 0 : 1;
}
