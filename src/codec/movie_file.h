#pragma once

#include "codec/av_support.h"
#include "codec/descriptor_stream.h"
#include "codec/part_file.h"

#include <QString>

#include <optional>
#include <stop_token>

namespace vornic {

struct MovieContents;

/// One mp4 file being written: under a hidden temporary name beside its final place until it is complete.
///
/// Made by a MovieWriter on its thread. Every function throws MovieFailure, also when the stop is requested while
/// it works. The destructor removes the temporary file of a movie that was not completed.
class MovieFile
{
public:
    /// Creates the temporary file. The final name is not touched.
    MovieFile(QString filename, std::stop_token stop);
    ~MovieFile();
    MovieFile(const MovieFile &) = delete;
    MovieFile &operator=(const MovieFile &) = delete;

    /// The new track's number. The encoder must be open and must have been told to give a global header.
    int addTrack(const AVCodecContext &encoder);
    /// The same for one of several of a kind: players show the \a title, and play the default one.
    int addTrack(const AVCodecContext &encoder, const QString &title, bool isDefault);
    /// After the last track.
    void writeHeader();
    /// Takes the packet's contents. Packets of one track come in order, those of different tracks in any.
    void mux(AVPacket &packet, int track, AVRational timeBase);
    /// Puts the index in front, syncs the file to the disk, proves that it holds \a contents, and renames it to its
    /// final name, replacing \a replaced and no other file of that name. Blocks for as long as that takes. Returns the
    /// movie's path, which is another one where something else has come to stand there.
    [[nodiscard]] QString complete(const MovieContents &contents,
                                   const std::optional<FileIdentity> &replaced);

    /// Throws once the stop is requested.
    void checkNotCancelled() const;

private:
    void createFormat();
    [[nodiscard]] int openReader(AVIOContext *&stream) noexcept;
    void checkWritten(int result) const;
    void checkStillThere() const;

    QString m_filename;
    std::stop_token m_stop;
    PartFile m_part;
    std::optional<DescriptorStream> m_writer;
    std::optional<DescriptorStream> m_reader; ///< while the index is put in front
    AvPtr<AVFormatContext> m_format;
};

} // namespace vornic
