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
#include <QTextLayout>
#include <QTextTable>
#include <QUrl>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int resolution = 1200; ///< dots an inch: letters stand where they should
constexpr double millimetre = resolution / 25.4;
/// Lengths in a document's formats are dots of a screen, whatever the document is painted on.
constexpr double formatMillimetre = 96 / 25.4;
constexpr QSizeF page(210 * millimetre, 297 * millimetre);
constexpr double margin = 22;                  ///< in millimetres
constexpr double textWidth = 210 - 2 * margin; ///< in millimetres
const QColor headingInk(0xb8, 0x27, 0x22);
const QColor codeGround(0xef, 0xf0, 0xf2);

/// A title for the document's properties; null for what is no help text.
QString titleOf(const QString &text)
{
    const QString mark = QStringLiteral("# ");
    return text.startsWith(mark) ? text.section(u'\n', 0, 0).sliced(mark.size()) : QString();
}

/// At most as wide as the text; 150 dots an inch keep it crisp. False when there is no such picture.
bool fitPicture(const QTextDocument &document, QTextCharFormat &format)
{
    QTextImageFormat picture = format.toImageFormat();
    const auto image = document.resource(QTextDocument::ImageResource, QUrl(picture.name())).value<QImage>();
    if (image.isNull()) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(picture.name()));
        return false;
    }
    picture.setWidth(std::min(textWidth, image.width() * 25.4 / 150) * formatMillimetre);
    format = picture;
    return true;
}

/// False when a picture is missing.
bool styleBlock(const QTextDocument &document, const QTextBlock &block)
{
    bool isWhole = true;
    const bool isHeading = block.blockFormat().headingLevel() > 0;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        QTextCharFormat format = fragment.charFormat();
        if (format.isImageFormat())
            isWhole = fitPicture(document, format) && isWhole;
        else if (format.fontFixedPitch())
            format.setBackground(codeGround);
        else if (isHeading)
            format.setForeground(headingInk);
        QTextCursor cursor(block);
        cursor.setPosition(fragment.position());
        cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
    QTextCursor cursor(block);
    QTextBlockFormat gaps;
    gaps.setTopMargin(isHeading ? 6 * formatMillimetre : 0);
    gaps.setBottomMargin(cursor.currentTable() ? 0 : 2 * formatMillimetre);
    cursor.mergeBlockFormat(gaps);
    return isWhole;
}

void styleTable(QTextTable &table)
{
    QTextTableFormat format = table.format();
    format.setColumnWidthConstraints(
        { QTextLength(QTextLength::PercentageLength, 38), QTextLength(QTextLength::PercentageLength, 62) });
    format.setBorder(0);
    format.setCellSpacing(0);
    format.setCellPadding(formatMillimetre);
    format.setTopMargin(formatMillimetre);
    format.setBottomMargin(2 * formatMillimetre);
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
        QTextTableCell cell = table.cellAt(0, column);
        QTextCharFormat heading = cell.format();
        heading.setBackground(codeGround);
        cell.setFormat(heading);
    }
}

/// Before the title, in its line.
void insertIcon(QTextDocument &document, const QString &icon)
{
    QTextImageFormat picture;
    picture.setName(QUrl::fromLocalFile(icon).toString());
    picture.setWidth(18 * formatMillimetre);
    picture.setVerticalAlignment(QTextCharFormat::AlignMiddle);
    QTextCursor start(&document);
    const QTextCharFormat title = start.block().begin().fragment().charFormat();
    start.insertImage(picture);
    start.insertText(QStringLiteral("  "), title);
}

bool style(QTextDocument &document)
{
    bool isWhole = true;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        isWhole = styleBlock(document, block) && isWhole;
        QTextTable *table = QTextCursor(block).currentTable();
        if (table && table->firstCursorPosition().block() == block)
            styleTable(*table);
    }
    return isWhole;
}

void setPages(QTextDocument &document, QPdfWriter &writer)
{
    document.documentLayout()->setPaintDevice(&writer);
    QTextFrameFormat frame = document.rootFrame()->frameFormat();
    frame.setMargin(margin * formatMillimetre);
    document.rootFrame()->setFrameFormat(frame);
    document.setPageSize(page);
}

/// The page of the block's first line; the block itself may begin at the end of the page before.
int pageOf(const QTextBlock &block)
{
    const QRectF bounds = block.document()->documentLayout()->blockBoundingRect(block);
    const double firstLine = block.layout()->lineAt(0).rect().center().y();
    return static_cast<int>((bounds.top() + firstLine) / page.height());
}

/// No heading stands alone at the end of a page.
void keepHeadingsWithText(QTextDocument &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const bool standsAlone = block.blockFormat().headingLevel() > 0 && block.next().isValid()
            && pageOf(block) != pageOf(block.next());
        if (!standsAlone)
            continue;
        QTextBlockFormat format = block.blockFormat();
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        QTextCursor(block).setBlockFormat(format);
        // The layout would not place again all that follows.
        document.markContentsDirty(0, document.characterCount());
    }
}

void paintPages(QTextDocument &document, QPdfWriter &writer)
{
    QPainter painter(&writer);
    const int pages = document.pageCount();
    for (int number = 0; number < pages; ++number) {
        if (number > 0)
            writer.newPage();
        const QRectF visible(QPointF(0, number * page.height()), page);
        painter.save();
        painter.translate(-visible.topLeft());
        document.drawContents(&painter, visible);
        painter.restore();
        painter.drawText(QRectF(0, page.height() - 16 * millimetre, page.width(), 6 * millimetre),
                         Qt::AlignCenter,
                         QStringLiteral("%1 / %2").arg(number + 1).arg(pages));
    }
}

bool makeHelp(const QString &source, const QString &icon, const QString &destination)
{
    QFile file(source);
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    const QString title = titleOf(text);
    if (title.isEmpty()) {
        std::fprintf(stderr, "%s is not a help text\n", qPrintable(source));
        return false;
    }
    QTextDocument document;
    document.setDefaultFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    document.setBaseUrl(QUrl::fromLocalFile(source));
    document.setMarkdown(text);
    const bool isWhole = style(document);
    insertIcon(document, icon);

    QPdfWriter writer(destination);
    writer.setTitle(title);
    writer.setResolution(resolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    setPages(document, writer);
    keepHeadingsWithText(document);
    paintPages(document, writer);
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
    return makeHelp(arguments[1], arguments[2], arguments[3]) ? 0 : 1;
}
