#include "app/window/unfinished_line.h"

#include "app/window/elided_label.h"
#include "app/window/unfinished_recordings.h"
#include "app/window/unfinished_text.h"
#include "controls/push_button.h"

#include <QHBoxLayout>
#include <QImage>
#include <QPixmap>

namespace vornic {

namespace {

constexpr int spacing = 8;

} // namespace

UnfinishedLine::UnfinishedLine(QWidget *parent)
    : QWidget(parent)
    , m_picture(new QLabel(this))
    , m_column(new QBoxLayout(QBoxLayout::TopToBottom))
    , m_label(new ElidedLabel(this))
    , m_movieButton(makeButton(
          tr("Make the movie"), "makeMovieButton", tr("Asks where the movie is kept, and writes it")))
    , m_listButton(makeButton(
          tr("Show them…"), "showUnfinishedButton", tr("List them, to make their movies or to delete them")))
    , m_keepButton(makeButton(
          tr("Keep"), "keepUnfinishedButton", tr("Leave it for later: the menu Vornic leads back to it")))
    , m_deleteButton(
          makeButton(tr("Delete"), "deleteUnfinishedButton", tr("Delete the recording, after a question")))
{
    m_picture->setObjectName(QStringLiteral("unfinishedPicture"));
    m_picture->setFixedSize(thumbnailSize);
    m_picture->setAccessibleName(tr("A picture from the middle of the recording"));
    m_label->setObjectName(QStringLiteral("unfinishedLabel"));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(spacing);
    buttons->addStretch();
    for (QPushButton *button : { m_movieButton, m_listButton, m_keepButton, m_deleteButton })
        buttons->addWidget(button);
    m_column->setSpacing(spacing / 2);
    m_column->addWidget(m_label, 1);
    m_column->addLayout(buttons);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(m_picture);
    row->addLayout(m_column, 1);
    connect(m_movieButton, &QAbstractButton::clicked, this, [this] { emit movieAsked(m_id); });
    connect(m_deleteButton, &QAbstractButton::clicked, this, [this] { emit deletionAsked(m_id); });
    connect(m_listButton, &QAbstractButton::clicked, this, &UnfinishedLine::listAsked);
    connect(m_keepButton, &QAbstractButton::clicked, this, &UnfinishedLine::keepAsked);
    showRecordings({});
}

QPushButton *UnfinishedLine::makeButton(const QString &text, const char *name, const QString &toolTip)
{
    auto *button = new PushButton(text, this);
    button->setObjectName(QLatin1StringView(name));
    button->setToolTip(toolTip);
    return button;
}

QString UnfinishedLine::text() const
{
    return m_label->text();
}

void UnfinishedLine::showRecordings(const QList<StoredRecording> &recordings)
{
    const bool isOne = recordings.size() == 1;
    const bool isReadable = isOne && recordings.first().isReadable;
    const QString before = m_id;
    m_id = isOne ? recordings.first().id : QString();
    if (m_id != before)
        showPicture({});
    m_label->showText(unfinishedSentence(recordings));
    m_picture->setVisible(isReadable);
    // Beside the picture there is room for two lines.
    m_column->setDirection(isReadable ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_movieButton->setVisible(isReadable);
    m_listButton->setVisible(!isOne);
    m_deleteButton->setVisible(isOne);
    setVisible(!recordings.isEmpty());
    emit roomChanged();
}

void UnfinishedLine::showPicture(const QImage &picture)
{
    m_picture->setPixmap(thumbnail(picture, devicePixelRatioF()));
}

void UnfinishedLine::setActionsEnabled(bool enabled)
{
    m_movieButton->setEnabled(enabled);
    m_deleteButton->setEnabled(enabled);
}

} // namespace vornic
