#include "app/logo_actions.h"

#include "app/session/logo_panels.h"
#include "app/session/recording_questions.h"
#include "options/VNOption.h"
#include "pictures/picture_file.h"

#include <QColor>

#include <optional>

namespace vornic {

LogoActions::LogoActions(VNOption &options, LogoPanels &panels, RecordingQuestions &questions)
    : m_options(options)
    , m_panels(panels)
    , m_questions(questions)
{
    // However it came in, be it dropped on the overlay: later, for a drop waits for its end.
    connect(options.logoContext(),
            &VNLogoContext::pictureScaledDown,
            this,
            &LogoActions::tellOfScaling,
            Qt::QueuedConnection);
}

void LogoActions::setFontAttrs()
{
    const QFont font = m_options.logoContext()->fontAttrs().font.value_or(defaultLogoFont());
    m_panels.orderFrontFontPanel(font, [this](const QFont &chosen) { changeFont(chosen); });
}

void LogoActions::changeFont(const QFont &font)
{
    m_options.logoContext()->setFontAttrs({ font });
    emit changed();
}

void LogoActions::setFontFillColor(const QColor &color)
{
    m_options.logoContext()->setLogoFontFillColor(color);
    emit changed();
}

void LogoActions::setFontStrokeColor(const QColor &color)
{
    m_options.logoContext()->setLogoFontStrokeColor(color);
    emit changed();
}

void LogoActions::selImageFile()
{
    m_panels.chooseLogoImage([this](const std::optional<QString> &path) {
        if (path)
            setLogoImageFile(*path);
    });
}

void LogoActions::setLogoImageFile(const QString &path)
{
    QString whyNot;
    const Picture picture = readPictureFile(path, &whyNot);
    if (picture.isNull()) {
        m_questions.alertError(tr("The picture %1 cannot be read: %2.").arg(path, whyNot));
        return;
    }
    setLogoPicture(picture);
}

void LogoActions::setLogoImage(const QImage &picture)
{
    setLogoPicture(Picture(picture));
}

void LogoActions::setLogoPicture(const Picture &picture)
{
    m_options.logoContext()->setPicture(picture);
    emit changed();
}

void LogoActions::makePictureOfText()
{
    VNLogoContext &logo = *m_options.logoContext();
    const PictureOfText made = logo.pictureOfText();
    if (made.image.isNull())
        return;
    logo.setLogoPosition(made.position);
    logo.setLogoScale(made.scale);
    logo.setIsLogoTypeText(false);
    setLogoImage(made.image);
}

void LogoActions::tellOfScaling(const QString &fileName, QSize original, QSize scaled)
{
    const QString sizes
        = tr("It has %1 × %2 pixels, more than a logo may have, and became the logo with %3 × %4.")
              .arg(original.width())
              .arg(original.height())
              .arg(scaled.width())
              .arg(scaled.height());
    m_questions.alert(fileName.isEmpty() ? tr("The picture was scaled down.")
                                         : tr("The picture %1 was scaled down.").arg(fileName),
                      sizes);
}

} // namespace vornic
