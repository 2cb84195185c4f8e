/// What the end of an hour's movie costs, when its index is put in front: all that was written is moved, and synced to
/// the disk once more.
///
///     movie_end_benchmark [FOLDER]
///
/// Writes packets of made up bytes in FOLDER (the current one), which should lie on a disk with some gigabytes. Times are
/// seconds: to write and to sync what a movie without an index in front would be, then to move it and to sync it again.
/// The part is that of the last two in the wait for such an hour, where it is encoded in the given part of its length.

#include "base/PKTimebase.h"
#include "codec/av_support.h"
#include "codec/movie_contents.h"
#include "codec/movie_file.h"
#include "codec/movie_proof.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double secondsOfSyncs = 0;

} // namespace

/// Stands before the system's, to time it.
extern "C" int fsync(int descriptor)
{
    using Function = int (*)(int);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "fsync"));
    const Clock::time_point start = Clock::now();
    const int result = systems(descriptor);
    secondsOfSyncs += secondsSince(start);
    return result;
}

namespace {

using namespace vornic;

constexpr std::int64_t length = 3600; ///< seconds

struct Hour {
    const char *name;
    int framesASecond;
    int bytesASecond;
    double wait; ///< of its length, to encode it
};

/// Only its parameter sets are used.
AvPtr<AVCodecContext> openEncoder(const Hour &hour)
{
    auto encoder = owned(avcodec_alloc_context3(avcodec_find_encoder_by_name("libx264")));
    encoder->width = 1920;
    encoder->height = 1080;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->time_base = { 1, static_cast<int>(PKTimebase) };
    encoder->framerate = { hour.framesASecond, 1 };
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (avcodec_open2(encoder.get(), nullptr, nullptr) < 0)
        std::fputs("there is no encoder\n", stderr);
    return encoder;
}

/// Bytes that hold no start code, behind one.
QByteArray packetBytes(const Hour &hour)
{
    QByteArray bytes(hour.bytesASecond / hour.framesASecond, '\0');
    std::mt19937 random(1);
    for (char &byte : bytes)
        byte = static_cast<char>(1 + random() % 255);
    return bytes.replace(0, 5, QByteArray::fromHex("0000000165"));
}

MovieContents writePackets(MovieFile &file, int track, const Hour &hour)
{
    QByteArray bytes = packetBytes(hour);
    const auto packet = owned(av_packet_alloc());
    MovieContents contents;
    contents.pictureSize = { 1920, 1080 };
    contents.frames = hour.framesASecond * length;
    contents.end = length * PKTimebase;
    contents.lastFrame = MovieProof::endingOf(bytes);
    for (std::int64_t i = 0; i < contents.frames; ++i) {
        packet->data = reinterpret_cast<std::uint8_t *>(bytes.data());
        packet->size = static_cast<int>(bytes.size());
        packet->duration = PKTimebase / hour.framesASecond;
        packet->pts = packet->dts = i * packet->duration;
        packet->flags = i % (std::int64_t { 2 } * hour.framesASecond) == 0 ? AV_PKT_FLAG_KEY : 0;
        file.mux(*packet, track, { 1, static_cast<int>(PKTimebase) });
    }
    return contents;
}

/// Of the hidden file that grows in \a folder.
double secondsToSync(const QString &folder)
{
    const auto files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    const int descriptor = ::open(files.value(0).filePath().toLocal8Bit().constData(), O_RDONLY);
    secondsOfSyncs = 0;
    fsync(descriptor);
    ::close(descriptor);
    return secondsOfSyncs;
}

void measure(const Hour &hour, const QString &where)
{
    const QTemporaryDir folder(where + "/movie-end-XXXXXX");
    const QString path = folder.filePath("hour.mp4");
    const auto encoder = openEncoder(hour);
    const Clock::time_point start = Clock::now();
    MovieFile file(path, {});
    const int track = file.addTrack(*encoder);
    file.writeHeader();
    const MovieContents contents = writePackets(file, track, hour);
    const double written = secondsSince(start);
    const double synced = secondsToSync(folder.path());
    secondsOfSyncs = 0;
    const Clock::time_point end = Clock::now();
    const QString movie = file.complete(contents, std::nullopt);
    const double moved = secondsSince(end) - secondsOfSyncs;
    const double wait = hour.wait * static_cast<double>(length);
    std::printf("| %s | %.0f MB | %.1f | %.1f | %.1f | %.1f | %.1f %% |\n",
                hour.name,
                static_cast<double>(QFileInfo(movie).size()) / 1e6,
                written,
                synced,
                moved,
                secondsOfSyncs,
                100 * (moved + secondsOfSyncs) / (wait + moved + secondsOfSyncs));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    routeAvLog();
    const QString where = argc > 1 ? argv[1] : ".";
    std::puts("| an hour of | file | written | synced | moved | synced again | part of the wait |");
    std::puts("|---|---|---|---|---|---|---|");
    measure({ "pages of text, twelve of them", 2, 2'800, 0.02 }, where);
    measure({ "a desktop", 30, 560'000, 0.05 }, where);
    measure({ "scrolling text", 30, 648'000, 0.36 }, where);
    return 0;
}
