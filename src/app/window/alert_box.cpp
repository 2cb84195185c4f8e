#include "app/window/alert_box.h"

#include "app/window/headings.h"
#include "base/printable.h"
#include "controls/push_button.h"
#include "controls/skin_colors.h"
#include "controls/window_background.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace vornic {

namespace {

constexpr QMargins margins(24, 20, 24, 20);
constexpr int spacing = 14;
constexpr int buttonSpacing = 10;
constexpr int textWidth = 380;
constexpr int iconSide = 32;

/// A line may end behind a slash, but not behind the one that a path begins with.
QString withWholePaths(QString text)
{
    constexpr QChar wordJoiner(0x2060);
    return text.replace(QStringLiteral(" /"), QStringLiteral(" /") + wordJoiner);
}

QLabel *makeLabel(const QString &text, bool isHeading)
{
    QStringList lines = text.split(u'\n');
    std::ranges::transform(lines, lines.begin(), printable);
    auto *label = new QLabel(withWholePaths(lines.join(u'\n')));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(textWidth);
    label->setProperty("heading", isHeading);
    return label;
}

/// A triangle with an exclamation mark, in the colours of the skin.
QPixmap warningPicture(double ratio)
{
    QPixmap picture((QSizeF(iconSide, iconSide) * ratio).toSize());
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(skin::warning(), 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(skin::warning());
    painter.drawPolygon(QPolygonF { { 16, 5 }, { 29, 27 }, { 3, 27 } });
    painter.setPen(QPen(skin::recess(), 3.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(16, 12), QPointF(16, 18.5));
    painter.drawPoint(QPointF(16, 24));
    return picture;
}

QLabel *makeIcon(double ratio)
{
    auto *label = new QLabel;
    label->setPixmap(warningPicture(ratio));
    label->setAlignment(Qt::AlignTop);
    return label;
}

} // namespace

QString whatFailed(const QString &sentence)
{
    const qsizetype end = sentence.indexOf(QStringLiteral(": "));
    QString first = sentence.left(end);
    if (first.endsWith(QLatin1Char('.')))
        first.chop(1);
    return first;
}

AlertBox::AlertBox(QWidget *parent, Kind kind, const QString &message, const QString &informativeText)
    : QDialog(parent)
{
    const bool isFailure = kind == Kind::Failure;
    setWindowTitle(isFailure ? printable(whatFailed(informativeText)) : QStringLiteral("Vornic"));
    auto *background = new WindowBackground(this);
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins({});
    outer->addWidget(background);
    outer->setSizeConstraint(QLayout::SetFixedSize);

    auto *text = new QVBoxLayout;
    text->setSpacing(spacing);
    text->addWidget(makeLabel(message, !isFailure));
    text->addWidget(makeLabel(informativeText, isFailure));
    auto *row = new QHBoxLayout;
    row->setSpacing(margins.left());
    if (isFailure)
        row->addWidget(makeIcon(devicePixelRatioF()));
    row->addLayout(text);
    m_buttons = new QHBoxLayout;
    m_buttons->setSpacing(buttonSpacing);
    m_buttons->addStretch();
    auto *column = new QVBoxLayout(background);
    column->setContentsMargins(margins);
    column->setSpacing(spacing);
    column->addLayout(row);
    column->addLayout(m_buttons);
    emboldenHeadings(*this);
}

void AlertBox::addButton(const QString &text, int answer)
{
    auto *button = new PushButton(text);
    connect(button, &QAbstractButton::clicked, this, [this, answer] { QDialog::done(answer); });
    const bool isFirst = m_buttons->count() == 1; // the stretch
    m_buttons->insertWidget(1, button);
    if (!isFirst)
        return;
    m_answerOfEscape = answer;
    button->setDefault(true);
    button->setFocus();
}

bool AlertBox::onlyTells() const
{
    return m_buttons->count() == 2; // a stretch and one button
}

void AlertBox::done(int /*answer*/)
{
    // Escape, or the window manager.
    QDialog::done(m_answerOfEscape);
}

} // namespace vornic
