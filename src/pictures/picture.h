#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

class QFile;

namespace vornic {

/// The pixels of a picture as they are drawn, and the bytes that it is stored as. Larger ones than can be stored are
/// scaled down as they are taken, so that what is seen is what comes back at the next start.
///
/// A value, made wherever pictures come in; main thread only, for the toolkit's limit of memory is the process's.
class Picture
{
public:
    /// Those of an 8192 by 4096 one.
    static constexpr qint64 maxPixels = 8192LL * 4096;

    Picture() = default;
    /// \a pixels one by one, whatever density they claim; null where a side is too long to be drawn.
    explicit Picture(const QImage &pixels);
    /// Upright, from a file that is open for reading; its contents tell the format. Null when it cannot be read; then
    /// \a whyNot, where it is asked for, says why.
    [[nodiscard]] static Picture read(QFile &file, QString *whyNot = nullptr);
    /// From what encoded() returned; null for all else, and for more than can be kept, told from the header before memory
    /// is taken.
    [[nodiscard]] static Picture decoded(const QByteArray &bytes);

    [[nodiscard]] bool isNull() const { return m_image.isNull(); }
    /// In the format that is drawn fastest.
    [[nodiscard]] const QImage &image() const { return m_image; }
    /// Of the file, without its folder; empty for pixels that came without one.
    [[nodiscard]] const QString &fileName() const { return m_fileName; }
    /// Before it was scaled down; otherwise the image's.
    [[nodiscard]] QSize originalSize() const { return m_originalSize; }
    [[nodiscard]] bool isScaledDown() const { return m_originalSize != m_image.size(); }

    /// A PNG, JPEG or WebP file: the bytes that were read, where they are one and hold this picture. Others are
    /// encoded at the first call, which takes seconds for a large one: as a PNG, which keeps every pixel, or as a fine
    /// JPEG where the picture is opaque and its pixels were lost anyway as it was scaled down. Empty for a null picture.
    [[nodiscard]] QByteArray encoded() const;

private:
    QImage m_image;
    QString m_fileName;
    QSize m_originalSize { 0, 0 };
    bool m_isOpaque = false;
    mutable QByteArray m_encoded; ///< empty before it is known
};

} // namespace vornic
