/// Whether the progress of a movie that is written tells the truth: how equal its steps are in time, and how good the
/// time left is that follows from them.
///
///     progress_benchmark [seconds of each part] [MOVIE]
///
/// The recording is mixed: a still page, typing, a page that scrolls, and the still page again. Each tenth of the
/// progress should take a tenth of the time. The time left is what the window shows, elapsed * (100 - percent) /
/// percent; it is looked at from two seconds on, until one is left.

#include "base/PKTimebase.h"
#include "support/spooled_movie.h"
#include "support/test_pictures.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

using namespace vornic;
using Clock = std::chrono::steady_clock;

constexpr QSize screenSize(1920, 1080);
constexpr int framesASecond = 30;

struct Step {
    double seconds = 0; ///< since the begin
    double percent = 0;
};

class MixedRecording
{
public:
    explicit MixedRecording(int seconds)
        : m_frames(seconds * framesASecond)
    {
        m_movie.setPointer({ 700, 500 });
        stayStill();
        type();
        scroll();
        stayStill();
        m_movie.end();
    }

    /// The last step is the end.
    std::vector<Step> write(const QString &file)
    {
        std::vector<Step> steps { {} };
        const Clock::time_point start = Clock::now();
        const auto elapsed = [start] { return std::chrono::duration<double>(Clock::now() - start).count(); };
        const test::WrittenMovie written = m_movie.write(file, [&](double percent) {
            steps.push_back({ elapsed(), percent });
        });
        if (written.failure)
            std::fprintf(stderr, "%s\n", qPrintable(written.failure->reason));
        steps.push_back({ elapsed(), 100 });
        return steps;
    }

private:
    void record()
    {
        m_movie.record(m_now);
        m_now += PKTimebase / framesASecond;
    }
    void stayStill()
    {
        m_movie.setPicture(m_page);
        for (int i = 0; i < m_frames; ++i)
            record();
    }
    void type()
    {
        QImage page = m_page;
        for (int i = 0; i < m_frames; ++i) {
            const QPoint place(300 + i % 100 * 9, 300 + i / 100 % 40 * 17);
            QPainter painter(&page);
            painter.fillRect(QRect(place - QPoint(0, 14), QSize(9, 17)), Qt::white);
            painter.drawText(place, QString(QChar('a' + i % 26)));
            painter.end();
            m_movie.setPicture(page);
            record();
        }
    }
    void scroll()
    {
        QImage page = m_page;
        for (int i = 0; i < m_frames; ++i) {
            QPainter painter(&page);
            painter.drawImage(0, -(i * 3 % screenSize.height()), m_page);
            painter.drawImage(0, screenSize.height() - i * 3 % screenSize.height(), m_page);
            painter.end();
            m_movie.setPicture(page);
            record();
        }
    }

    int m_frames; ///< of each part
    test::SpooledMovie m_movie { screenSize };
    QImage m_page = test::textPage(screenSize, 1);
    std::int64_t m_now = 0;
};

/// When \a percent was reached: between the two steps around it.
double timeOf(double percent, const std::vector<Step> &steps)
{
    const auto after = std::ranges::lower_bound(steps, percent, {}, &Step::percent);
    if (after == steps.begin())
        return after->seconds;
    const Step &before = *std::prev(after);
    const double part = (percent - before.percent) / (after->percent - before.percent);
    return before.seconds + part * (after->seconds - before.seconds);
}

void printSteps(const std::vector<Step> &steps)
{
    const double whole = steps.back().seconds;
    double furthest = 0;
    std::printf("each tenth of the progress, in tenths of the time:");
    for (int tenth = 0; tenth < 10; ++tenth)
        std::printf(" %.2f", (timeOf(10 * tenth + 10, steps) - timeOf(10 * tenth, steps)) * 10 / whole);
    for (const Step &step : steps)
        furthest = std::max(furthest, std::abs(step.percent - 100 * step.seconds / whole));
    std::printf("\nfurthest from the truth: %.0f of 100 steps\n", furthest);
}

void printTimeLeft(const std::vector<Step> &steps)
{
    const double whole = steps.back().seconds;
    double worst = 0;
    double sum = 0;
    int count = 0;
    for (const Step &step : steps) {
        const double left = whole - step.seconds;
        if (step.seconds < 2 || left < 1 || step.percent <= 0)
            continue;
        const double told = step.seconds * (100 - step.percent) / step.percent;
        const double error = std::abs(told - left) / left;
        worst = std::max(worst, error);
        sum += error;
        ++count;
    }
    if (count == 0)
        std::printf("time left: the movie is written too soon to tell\n");
    else
        std::printf(
            "time left: wrong by %.0f %% at worst, %.0f %% on average\n", 100 * worst, 100 * sum / count);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QTemporaryDir folder;
    MixedRecording recording(arguments.value(1, "20").toInt());
    const std::vector<Step> steps = recording.write(arguments.value(2, folder.filePath("mixed.mp4")));
    std::printf("written in %.1f s, %zu steps\n", steps.back().seconds, steps.size() - 1);
    printSteps(steps);
    printTimeLeft(steps);
    return 0;
}
