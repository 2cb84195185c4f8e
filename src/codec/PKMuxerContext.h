#pragma once

#include "codec/file_identity.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <utility>

namespace vornic {

/// The settings of one movie: its file, container, picture and sound. Plain data.
///
/// Made at the start of a recording and read by the PKMuxerTask that writes the movie; it may serve many.
class PKMuxerContext
{
public:
    static constexpr int formatMp4 = 1;
    static constexpr int videoCodecH264 = 1;
    static constexpr int audioCodecNone = 0;
    static constexpr int audioCodecAac = 100;
    static constexpr int sampleFormatUnsigned8 = 0;
    static constexpr int sampleFormatSigned16 = 1;

    explicit PKMuxerContext(QString filename, int format = formatMp4)
        : m_filename(std::move(filename))
        , m_format(format)
    {
    }

    [[nodiscard]] const QString &filename() const { return m_filename; }
    void setFilename(QString filename) { m_filename = std::move(filename); }
    /// The file that the movie may replace, at its end; anything else that stands there then keeps its name, and the
    /// movie gets another one.
    [[nodiscard]] const std::optional<FileIdentity> &replacedFile() const { return m_replacedFile; }
    void setReplacedFile(const std::optional<FileIdentity> &file) { m_replacedFile = file; }
    [[nodiscard]] int format() const { return m_format; }

    /// The shown size in pixels. The movie stores it rounded up to even, repeating the last column or row.
    [[nodiscard]] std::int32_t width() const { return m_width; }
    void setWidth(std::int32_t width) { m_width = width; }
    [[nodiscard]] std::int32_t height() const { return m_height; }
    void setHeight(std::int32_t height) { m_height = height; }

    [[nodiscard]] int videoCodecID() const { return m_videoCodecID; }
    void setVideoCodecID(int id) { m_videoCodecID = id; }
    /// Nominal frames a second; every frame still keeps its own duration.
    [[nodiscard]] double frameRate() const { return m_frameRate; }
    void setFrameRate(double framesPerSecond) { m_frameRate = framesPerSecond; }
    /// Bits a second to aim at on average.
    [[nodiscard]] std::int32_t videoBitrate() const { return m_videoBitrate; }
    void setVideoBitrate(std::int32_t bitsPerSecond) { m_videoBitrate = bitsPerSecond; }

    /// 0: no sound track.
    [[nodiscard]] int audioCodecID() const { return m_audioCodecID; }
    void setAudioCodecID(int id) { m_audioCodecID = id; }
    /// The titles of the sound tracks, where there are several: the first has the first two channels of the sound, and so
    /// on. Empty: one track of all channels, without a title.
    [[nodiscard]] const QStringList &audioTracks() const { return m_audioTracks; }
    void setAudioTracks(QStringList titles) { m_audioTracks = std::move(titles); }
    /// The expected format of the sound; that of each PKAudioFrame2 is what counts.
    [[nodiscard]] std::int32_t samplerate() const { return m_samplerate; }
    void setSamplerate(std::int32_t hertz) { m_samplerate = hertz; }
    [[nodiscard]] std::int32_t numberOfChannels() const { return m_numberOfChannels; }
    void setNumberOfChannels(std::int32_t channels) { m_numberOfChannels = channels; }
    [[nodiscard]] std::int32_t sampleFormat() const { return m_sampleFormat; }
    void setSampleFormat(std::int32_t format) { m_sampleFormat = format; }

private:
    QString m_filename;
    std::optional<FileIdentity> m_replacedFile;
    int m_format;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    int m_videoCodecID = 0;
    double m_frameRate = 0;
    std::int32_t m_videoBitrate = 0;
    int m_audioCodecID = audioCodecNone;
    QStringList m_audioTracks;
    std::int32_t m_samplerate = 0;
    std::int32_t m_numberOfChannels = 0;
    std::int32_t m_sampleFormat = 0;
};

} // namespace vornic
