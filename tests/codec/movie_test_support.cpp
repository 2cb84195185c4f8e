#include "movie_test_support.h"

#include "base/PKTimebase.h"
#include "codec/PKMuxerTask.h"

#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace vornic::testing {

namespace {

QByteArray quoted(const QString &word)
{
    return '\'' + word.toLocal8Bit().replace('\'', "'\\''") + '\'';
}

/// Through the C library and not QProcess, whose children run on in the parent's memory for a moment, which
/// the thread sanitizer does not survive.
QByteArray freshOutputOf(const QString &program, const QStringList &arguments)
{
    QByteArray command = program.toLocal8Bit();
    for (const QString &argument : arguments)
        command += ' ' + quoted(argument);
    command += " </dev/null";
    std::FILE *const pipe = ::popen(command.constData(), "r");
    if (!pipe) {
        ADD_FAILURE() << "cannot start " << program.toStdString();
        return {};
    }
    QByteArray output;
    std::vector<char> block(1 << 16);
    while (const std::size_t length = std::fread(block.data(), 1, block.size(), pipe))
        output.append(block.data(), static_cast<qsizetype>(length));
    EXPECT_EQ(::pclose(pipe), 0) << command.toStdString();
    return output;
}

/// Another one once the file has been written again, or another has taken its name.
QByteArray versionOf(const QString &file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file).constData(), &status) != 0)
        return {};
    return QByteArray::number(status.st_ino) + ' ' + QByteArray::number(status.st_size) + ' '
        + QByteArray::number(status.st_mtim.tv_sec) + ' ' + QByteArray::number(status.st_mtim.tv_nsec);
}

/// What \a program says of \a movie. Asked the same again, while the movie is the same, it does not run once more: its
/// libraries alone take a tenth of a second to load, and a test asks for one thing after the other.
QByteArray outputOf(const QString &program, const QStringList &arguments, const QString &movie)
{
    static QHash<QByteArray, QByteArray> outputs;
    constexpr qsizetype maxKept = 1 << 22;
    const QByteArray version = versionOf(movie);
    const QByteArray key = (QStringList(program) + arguments).join(u'\n').toUtf8() + '\n' + version;
    if (const auto known = outputs.constFind(key); known != outputs.cend())
        return *known;
    const QByteArray output = freshOutputOf(program, arguments);
    if (!version.isEmpty() && !output.isEmpty() && output.size() <= maxKept)
        outputs.insert(key, output);
    return output;
}

std::vector<TaskReport> runAll(const std::vector<PKMuxerTask *> &tasks,
                               const std::vector<PKMuxerTaskDataSource *> &sources)
{
    ensureApplication();
    std::vector<TaskReport> reports(tasks.size());
    std::size_t running = tasks.size();
    QEventLoop loop;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        tasks[i]->setDataSource(sources[i]);
        tasks[i]->startMuxerWithBlock([&, i](const QString &action, const QVariant &value) {
            reports[i].actions.append(action);
            reports[i].values.append(value);
            reports[i].wasOnMainThread
                = reports[i].wasOnMainThread && QThread::currentThread() == qApp->thread();
            const bool ended = action == PKMuxerTaskActionComplete || action == PKMuxerTaskActionFailed;
            if (ended && --running == 0)
                loop.quit();
        });
    }
    QTimer::singleShot(120000, &loop, [&loop] {
        ADD_FAILURE() << "a task did not end";
        loop.quit();
    });
    loop.exec();
    return reports;
}

} // namespace

std::shared_ptr<const PKVideoFrame2> ListSource::PKMuxerTaskGetVideoFrame()
{
    if (onVideo)
        onVideo();
    return m_nextVideo < video.size() ? video[m_nextVideo++] : nullptr;
}

std::shared_ptr<const PKAudioFrame2> ListSource::PKMuxerTaskGetAudioFrame()
{
    if (onAudio)
        onAudio();
    return m_nextAudio < audio.size() ? audio[m_nextAudio++] : nullptr;
}

void ListSource::add(const QImage &picture, std::int64_t timeStamp, std::int64_t duration)
{
    auto frame = std::make_shared<PKVideoFrame2>(picture);
    frame->setTimeStamp(timeStamp);
    frame->setDuration(duration);
    video.push_back(std::move(frame));
    length = timeStamp + duration;
}

void ListSource::addGreys(QSize size, int count)
{
    for (int i = 0; i < count; ++i) {
        const int level = i * 7 % 256;
        add(flat(size, QColor(level, level, level)), i * PKTimebase / 30, PKTimebase / 30);
    }
}

bool TaskReport::isComplete() const
{
    return !actions.isEmpty() && actions.last() == PKMuxerTaskActionComplete;
}

std::optional<Error> TaskReport::error() const
{
    if (values.isEmpty() || values.last().metaType() != QMetaType::fromType<Error>())
        return std::nullopt;
    return values.last().value<Error>();
}

std::string TaskReport::reason() const
{
    return error().value_or(Error {}).reason.toStdString();
}

MovieStatistics TaskReport::statistics() const
{
    return isComplete() ? values.last().value<MovieStatistics>() : MovieStatistics { -1, -1, -1, -1, {} };
}

PKMuxerContext videoContext(const QString &filename, QSize size)
{
    PKMuxerContext context(filename);
    context.setWidth(size.width());
    context.setHeight(size.height());
    context.setVideoCodecID(PKMuxerContext::videoCodecH264);
    context.setFrameRate(30);
    context.setVideoBitrate(static_cast<std::int32_t>(size.width() * size.height() * 2.5));
    return context;
}

TaskReport runTask(const PKMuxerContext &context, PKMuxerTaskDataSource &source)
{
    return runTasks({ context }, { &source }).front();
}

TaskReport runTask(PKMuxerTask &task, PKMuxerTaskDataSource &source)
{
    return runAll({ &task }, { &source }).front();
}

std::vector<TaskReport> runTasks(const std::vector<PKMuxerContext> &contexts,
                                 const std::vector<PKMuxerTaskDataSource *> &sources)
{
    std::vector<std::shared_ptr<PKMuxerTask>> owners;
    std::vector<PKMuxerTask *> tasks;
    for (const PKMuxerContext &context : contexts) {
        owners.push_back(PKMuxerTask::create(std::make_shared<const PKMuxerContext>(context)));
        tasks.push_back(owners.back().get());
    }
    return runAll(tasks, sources);
}

void ensureApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argumentCount = 1;
    static char name[] = "codec-tests";
    static char *arguments[] = { name, nullptr };
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(argumentCount, arguments);
}

namespace {

QJsonObject probeShowing(const QStringList &sections, const QString &movie)
{
    const QByteArray text = outputOf(QStringLiteral("ffprobe"),
                                     QStringList { QStringLiteral("-v"),
                                                   QStringLiteral("error"),
                                                   QStringLiteral("-of"),
                                                   QStringLiteral("json"),
                                                   QStringLiteral("-show_streams") }
                                         + sections + QStringList { QStringLiteral("file:") + movie },
                                     movie);
    return QJsonDocument::fromJson(text).object();
}

} // namespace

QJsonObject probe(const QString &movie)
{
    return probeShowing({ QStringLiteral("-show_packets") }, movie);
}

QJsonObject probeDecoded(const QString &movie)
{
    QJsonObject probed
        = probeShowing({ QStringLiteral("-show_packets"), QStringLiteral("-show_frames") }, movie);
    // With both asked for, they come as one list.
    QJsonArray packets;
    QJsonArray frames;
    for (const QJsonValue &entry : probed.value(QStringLiteral("packets_and_frames")).toArray()) {
        const QString type = entry.toObject().value(QStringLiteral("type")).toString();
        (type == QStringLiteral("packet") ? packets : frames).append(entry);
    }
    probed.insert(QStringLiteral("packets"), packets);
    probed.insert(QStringLiteral("frames"), frames);
    return probed;
}

QJsonObject streamOf(const QJsonObject &probed, const QString &type)
{
    for (const QJsonValue &stream : probed.value(QStringLiteral("streams")).toArray())
        if (stream.toObject().value(QStringLiteral("codec_type")).toString() == type)
            return stream.toObject();
    return {};
}

QList<qint64>
numbersOf(const QJsonObject &probed, const QString &section, const QString &type, const QString &name)
{
    const QString kind
        = section == QStringLiteral("frames") ? QStringLiteral("media_type") : QStringLiteral("codec_type");
    QList<qint64> numbers;
    for (const QJsonValue &entry : probed.value(section).toArray())
        if (entry.toObject().value(kind).toString() == type)
            numbers.append(entry.toObject().value(name).toInteger(-1));
    return numbers;
}

QList<qint64> keyFrameTimes(const QJsonObject &probed)
{
    const auto ofFrames = [&probed](const QString &name) {
        return numbersOf(probed, QStringLiteral("frames"), QStringLiteral("video"), name);
    };
    QList<qint64> times = ofFrames(QStringLiteral("pts"));
    const QList<qint64> isKey = ofFrames(QStringLiteral("key_frame"));
    qsizetype i = 0;
    times.removeIf([&](qint64) { return isKey[i++] != 1; });
    return times;
}

QByteArray decodedPlanes(const QString &movie)
{
    return outputOf(QStringLiteral("ffmpeg"),
                    { QStringLiteral("-v"),
                      QStringLiteral("error"),
                      QStringLiteral("-i"),
                      movie,
                      QStringLiteral("-map"),
                      QStringLiteral("0:v"),
                      QStringLiteral("-vsync"),
                      QStringLiteral("passthrough"),
                      QStringLiteral("-f"),
                      QStringLiteral("rawvideo"),
                      QStringLiteral("-pix_fmt"),
                      QStringLiteral("yuv420p"),
                      QStringLiteral("-") },
                    movie);
}

QImage decodedPicture(const QString &movie, int number, QSize size)
{
    const QByteArray pixels = outputOf(QStringLiteral("ffmpeg"),
                                       { QStringLiteral("-v"),
                                         QStringLiteral("error"),
                                         QStringLiteral("-i"),
                                         movie,
                                         QStringLiteral("-map"),
                                         QStringLiteral("0:v"),
                                         QStringLiteral("-vf"),
                                         QStringLiteral("select=eq(n\\,%1),scale=flags=accurate_rnd+full_"
                                                        "chroma_int+full_chroma_inp:in_color_matrix=auto")
                                             .arg(number),
                                         QStringLiteral("-vsync"),
                                         QStringLiteral("passthrough"),
                                         QStringLiteral("-f"),
                                         QStringLiteral("rawvideo"),
                                         QStringLiteral("-pix_fmt"),
                                         QStringLiteral("bgr0"),
                                         QStringLiteral("-") },
                                       movie);
    if (pixels.size() != qsizetype { 4 } * size.width() * size.height()) {
        ADD_FAILURE() << "the picture has " << pixels.size() << " bytes";
        return {};
    }
    return QImage(reinterpret_cast<const uchar *>(pixels.constData()),
                  size.width(),
                  size.height(),
                  QImage::Format_RGB32)
        .copy();
}

std::vector<std::int16_t> decodedSound(const QString &movie)
{
    const QByteArray bytes = outputOf(QStringLiteral("ffmpeg"),
                                      { QStringLiteral("-v"),
                                        QStringLiteral("error"),
                                        QStringLiteral("-i"),
                                        movie,
                                        QStringLiteral("-map"),
                                        QStringLiteral("0:a"),
                                        QStringLiteral("-f"),
                                        QStringLiteral("s16le"),
                                        QStringLiteral("-ar"),
                                        QStringLiteral("48000"),
                                        QStringLiteral("-ac"),
                                        QStringLiteral("2"),
                                        QStringLiteral("-") },
                                      movie);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(bytes.size()) / 2);
    std::memcpy(samples.data(), bytes.constData(), samples.size() * 2);
    return samples;
}

QList<Box> boxesOf(const QString &movie)
{
    QFile file(movie);
    QList<Box> boxes;
    if (!file.open(QIODevice::ReadOnly))
        return boxes;
    qint64 position = 0;
    while (position + 8 <= file.size()) {
        file.seek(position);
        const QByteArray head = file.read(16);
        const qint64 shortSize = qFromBigEndian<quint32>(head.constData());
        const qint64 size = shortSize == 1 ? qFromBigEndian<qint64>(head.constData() + 8) : shortSize;
        if (size < 8)
            break;
        boxes.append({ QString::fromLatin1(head.mid(4, 4)), size });
        position += size;
    }
    return boxes;
}

QImage flat(QSize size, QColor color)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(color);
    return picture;
}

} // namespace vornic::testing
