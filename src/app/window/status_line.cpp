#include "app/window/status_line.h"

#include "app/session/time_text.h"
#include "app/window/elided_label.h"
#include "controls/push_button.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLocale>

namespace vornic {

namespace {

constexpr qint64 oneMebibyte = 1 << 20;

} // namespace

StatusLine::StatusLine(QWidget *parent)
    : QWidget(parent)
    , m_label(new ElidedLabel(this))
    , m_openButton(new PushButton(tr("Open"), this))
    , m_revealButton(new PushButton(tr("Show"), this))
{
    m_label->setObjectName(QStringLiteral("statusLabel"));
    m_openButton->setObjectName(QStringLiteral("openSavedButton"));
    m_openButton->setToolTip(tr("Play the movie that was recorded last"));
    m_revealButton->setObjectName(QStringLiteral("revealSavedButton"));
    m_revealButton->setToolTip(tr("Show the movie that was recorded last in its folder"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_openButton);
    layout->addWidget(m_revealButton);
    setFixedHeight(m_openButton->sizeHint().height());
    connect(m_openButton, &QAbstractButton::clicked, this, [this] { emit openAsked(m_path); });
    connect(m_revealButton, &QAbstractButton::clicked, this, [this] { emit revealAsked(m_path); });
    clear();
}

QString StatusLine::text() const
{
    return m_label->text();
}

void StatusLine::showSentence(const QString &sentence)
{
    setLine(sentence, {});
}

void StatusLine::showSaved(const QString &path, double seconds, const QString &flaws)
{
    const QFileInfo movie(path);
    const int decimals = movie.size() < oneMebibyte ? 0 : 1;
    const QString size = QLocale().formattedDataSize(movie.size(), decimals);
    const QString saved = tr("Saved %1, %2, %3").arg(movie.fileName(), minutesAndSeconds(seconds), size);
    setLine(flaws.isEmpty() ? saved : flaws + u' ' + saved, path, flaws);
}

/// The line may be too short for the flaws, but the tool tip holds them.
void StatusLine::setLine(const QString &text, const QString &path, const QString &flaws)
{
    m_path = path;
    m_openButton->setVisible(!path.isEmpty());
    m_revealButton->setVisible(!path.isEmpty());
    m_label->showText(text, flaws.isEmpty() ? QStringList { path } : QStringList { path, flaws });
}

} // namespace vornic
