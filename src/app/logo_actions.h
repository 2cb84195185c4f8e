#pragma once

#include <QObject>

class QColor;
class QFont;
class QImage;

namespace vornic {

class LogoPanels;
class Picture;
class RecordingQuestions;
class VNOption;

/// What the user does to the logo: its picture, font and colours.
///
/// Owned by the application delegate, which follows changed(); main thread only.
class LogoActions : public QObject
{
    Q_OBJECT
public:
    /// Borrows all for life.
    LogoActions(VNOption &options, LogoPanels &panels, RecordingQuestions &questions);

    /// Opens the font panel with the logo's font.
    void setFontAttrs();
    /// The font panel's choice becomes the logo's font, and its only attribute.
    void changeFont(const QFont &font);
    void setFontFillColor(const QColor &color);
    void setFontStrokeColor(const QColor &color);
    /// Asks for a file with the logo's picture.
    void selImageFile();
    /// The picture of the logo, from a file; what cannot be read is told, and the old one stays.
    void setLogoImageFile(const QString &path);
    void setLogoImage(const QImage &picture);
    /// The same with the file that the pixels came from.
    void setLogoPicture(const Picture &picture);
    /// The logo becomes a picture of its text, which is drawn as it was typed, in the same place; nothing happens where
    /// the text leaves no ink.
    void makePictureOfText();

signals:
    /// The overlay shows another logo now.
    void changed();

private:
    void tellOfScaling(const QString &fileName, QSize original, QSize scaled);

    VNOption &m_options;
    LogoPanels &m_panels;
    RecordingQuestions &m_questions;
};

} // namespace vornic
