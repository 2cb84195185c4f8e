// vornic_write_numbers mixed MOVIE
// vornic_write_numbers still|page MOVIE [MINUTES]
//
// Writes a movie whose pictures are numbered, so that whatever plays it can be asked what it shows, and when. The upper
// half of a picture holds two rows of 16 blocks: the number's bits, the highest first, white for 1, and below them their
// opposites. The lower half is a page of text that changes with the number.
//
// To standard output goes a line for each number, with the time of its first record in ticks of 1/90000 s, and at last
// "end" with the time at which the movie ends.
//
// mixed: half a minute of quick changes, still stretches of more than five seconds, a gap without records, and a moving
// pointer. page: an hour at 1920 x 1080, recorded 30 times a second, that changes every five minutes. still: the same with
// a lower half of one grey.

#include "base/PKTimebase.h"
#include "support/spooled_movie.h"
#include "support/test_pictures.h"

#include <QGuiApplication>
#include <QPainter>

#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using namespace vornic;

constexpr int bits = 16;
constexpr std::int64_t period = PKTimebase / 30;

/// Makes the recording, one record after the other. Made and used by main().
class NumberedRecording
{
public:
    NumberedRecording(QSize size, bool hasText)
        : m_size(size)
        , m_movie(size)
    {
        const QSize half(size.width(), size.height() / 2);
        QImage grey(half, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        for (std::uint32_t seed = 0; seed < 4; ++seed)
            m_pages.push_back(hasText ? test::textPage(half, seed) : grey);
        QImage arrow(12, 12, QImage::Format_ARGB32_Premultiplied);
        arrow.fill(Qt::red);
        m_movie.setPointerShape({ arrow, QPoint(0, 0) });
    }

    /// The next number appears.
    void change()
    {
        ++m_number;
        QImage picture(m_size, QImage::Format_RGB32);
        QPainter painter(&picture);
        painter.drawImage(0, m_size.height() / 2, m_pages[m_number % m_pages.size()]);
        for (int bit = 0; bit < bits; ++bit) {
            const bool isSet = (m_number >> static_cast<unsigned>(bits - 1 - bit) & 1U) != 0;
            fillBlock(painter, bit, 0, isSet);
            fillBlock(painter, bit, m_size.height() / 4, !isSet);
        }
        painter.end();
        m_movie.setPicture(picture);
        m_isNew = true;
    }

    /// Records what there is, and lets some \a ticks pass.
    void record(std::int64_t ticks = period)
    {
        if (m_isNew)
            std::printf("%u %lld\n", m_number, static_cast<long long>(m_now));
        m_isNew = false;
        m_movie.record(m_now);
        m_last = m_now;
        m_now += ticks;
    }

    void recordFor(std::int64_t ticks)
    {
        for (const std::int64_t end = m_now + ticks; m_now < end;)
            record(jittered());
    }

    void movePointer(QPoint position) { m_movie.setPointer(position); }

    /// Passes are never quite a thirtieth of a second apart.
    std::int64_t jittered() { return period + static_cast<std::int64_t>(m_random() % 401) - 200; }

    [[nodiscard]] bool write(const QString &file)
    {
        m_movie.end();
        const test::WrittenMovie written = m_movie.write(file);
        if (written.failure)
            std::fprintf(stderr, "%s\n", qPrintable(written.failure->reason));
        std::printf("end %lld\n",
                    static_cast<long long>(m_last + period)); // nothing tells how long the last one stays
        return !written.failure;
    }

private:
    void fillBlock(QPainter &painter, int bit, int y, bool isWhite) const
    {
        const int left = m_size.width() * bit / bits;
        const int right = m_size.width() * (bit + 1) / bits;
        painter.fillRect(left, y, right - left, m_size.height() / 4, isWhite ? Qt::white : Qt::black);
    }

    QSize m_size;
    test::SpooledMovie m_movie;
    std::vector<QImage> m_pages;
    std::mt19937 m_random { 14 };
    unsigned m_number = 0;
    bool m_isNew = false;
    std::int64_t m_now = 0;  ///< when the next record is made, ticks
    std::int64_t m_last = 0; ///< when the last one was made
};

void recordMixed(NumberedRecording &recording)
{
    const auto changes = [&recording](int count, std::int64_t each) {
        for (int i = 0; i < count; ++i) {
            recording.change();
            recording.recordFor(each);
        }
    };
    changes(60, 1); // in every record
    recording.recordFor(6 * PKTimebase);
    changes(10, PKTimebase / 2 + 1000);
    recording.change();
    recording.record(11 * PKTimebase / 2 + 1); // no pass for five seconds and a half
    changes(20, PKTimebase / 8);
    for (int step = 0; step < 60; ++step) { // only the pointer moves
        recording.movePointer(QPoint(20 + 3 * step, 100 + step));
        recording.record(recording.jittered());
    }
    recording.change(); // two as close as no two passes are
    recording.record(period / 4);
    recording.change();
    recording.record(period);
    changes(40, 1);
    recording.recordFor(7 * PKTimebase);
    changes(1, 1);
}

void recordStill(NumberedRecording &recording, int minutes)
{
    constexpr int stretches = 12;
    for (int stretch = 0; stretch < stretches; ++stretch) {
        recording.change();
        recording.recordFor(minutes * 60 * PKTimebase / stretches);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString scene = arguments.value(1);
    const bool isMixed = scene == "mixed";
    const int minutes = arguments.value(3, "60").toInt();
    if (arguments.size() < 3 || minutes < 1 || (!isMixed && scene != "still" && scene != "page")) {
        std::fputs("usage: vornic_write_numbers mixed|still|page MOVIE [MINUTES]\n", stderr);
        return 2;
    }
    NumberedRecording recording(isMixed ? QSize(320, 180) : QSize(1920, 1080), scene != "still");
    if (isMixed)
        recordMixed(recording);
    else
        recordStill(recording, minutes);
    return recording.write(arguments.at(2)) ? 0 : 1;
}
