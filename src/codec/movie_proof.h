#pragma once

#include "codec/av_support.h"
#include "codec/descriptor_stream.h"
#include "codec/movie_contents.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <vector>

namespace vornic {

/// A finished movie file that is read again, to find in it what was put in: the recording that it was made from may
/// be deleted then, and not before.
///
/// Made by a MovieFile on its thread. Reads the index and the last sample of each track, not the whole file. Every
/// function throws MovieFailure with ErrorKind::Incomplete where the file is not whole.
class MovieProof
{
public:
    /// Reads the open file from its beginning; an error calls it \a filename.
    MovieProof(int borrowedDescriptor, QString filename);

    void check(const MovieContents &contents);

    /// How a packet ends in the file as well as on its way there, where start codes stand in place of lengths; at most
    /// a few bytes.
    [[nodiscard]] static QByteArray endingOf(QByteArrayView packet);

private:
    void checkPictures(const MovieContents &contents);
    void checkSounds(const MovieContents &contents);
    void checkSound(AVStream &stream, const MovieContents::Sound &sound);
    void checkSamples(AVStream &stream, const QByteArray &lastEnding);
    [[nodiscard]] std::vector<AVStream *> streamsOf(AVMediaType type) const;
    void require(bool isTrue, const QString &otherwise) const;
    [[noreturn]] void fail(const QString &finding) const;

    struct Closer {
        void operator()(AVFormatContext *format) const { avformat_close_input(&format); }
    };

    QString m_filename;
    DescriptorStream m_stream;
    std::unique_ptr<AVFormatContext, Closer> m_format;
};

} // namespace vornic
