/// Plays into the sound server of $PULSE_SERVER, for tests and measurements.
///
///   vornic_play_sound tone SECONDS HERTZ AMPLITUDE     a sine, to the default output; amplitude up to 1
///   vornic_play_sound flashes COUNT SECONDS-APART      beeps of 200 ms, and while each is heard,
///                                                      $DISPLAY or $WAYLAND_DISPLAY is white
///   vornic_play_sound flashes COUNT SECONDS-APART HERTZ X Y WIDTH HEIGHT
///                                                      the same with beeps of that pitch, and of $DISPLAY
///                                                      only that rectangle is white
///
/// Prints "playing" once something is heard.

#include "support/screen_light.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr int framesPerSecond = 48'000;
constexpr pa_sample_spec stereo { PA_SAMPLE_S16LE, framesPerSecond, 2 };
constexpr double beepSeconds = 0.2;

/// The sample at a frame, -1 to 1.
using Wave = std::function<double(std::int64_t frame)>;

double sine(double hertz, std::int64_t frame)
{
    return std::sin(2 * std::numbers::pi * hertz * static_cast<double>(frame) / framesPerSecond);
}

class Player
{
public:
    Player(Wave wave, double bufferSeconds)
        : m_wave(std::move(wave))
        , m_loop(pa_mainloop_new())
        , m_context(pa_context_new(pa_mainloop_get_api(m_loop), "test sound"))
    {
        if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            fail("no server");
        while (pa_context_get_state(m_context) != PA_CONTEXT_READY)
            turn();
        m_stream = pa_stream_new(m_context, "test", &stereo, nullptr);
        pa_stream_set_write_callback(
            m_stream,
            [](pa_stream *, size_t bytes, void *self) { static_cast<Player *>(self)->fill(bytes); },
            this);
        constexpr auto standard = static_cast<std::uint32_t>(-1);
        pa_buffer_attr buffer { standard, standard, standard, standard, standard };
        buffer.tlength = static_cast<std::uint32_t>(bufferSeconds * framesPerSecond) * 4;
        const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY);
        if (pa_stream_connect_playback(m_stream, nullptr, &buffer, flags, nullptr, nullptr) < 0)
            fail("no output");
    }
    ~Player()
    {
        pa_stream_disconnect(m_stream);
        pa_stream_unref(m_stream);
        pa_context_disconnect(m_context);
        pa_context_unref(m_context);
        pa_mainloop_free(m_loop);
    }
    Player(const Player &) = delete;
    Player &operator=(const Player &) = delete;

    /// Works for a millisecond at most.
    void turn()
    {
        pa_mainloop_prepare(m_loop, 1000);
        pa_mainloop_poll(m_loop);
        pa_mainloop_dispatch(m_loop);
        if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context))
            || (m_stream && !PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream))))
            fail("the server is gone");
    }
    /// What is heard now, in seconds of the sound; below 0 before it begins.
    double heard()
    {
        const double now = seconds(pa_rtclock_now());
        if (pa_stream_get_state(m_stream) == PA_STREAM_READY && !m_awaitsTiming && now - m_asked > 0.02) {
            m_awaitsTiming = true;
            m_asked = now;
            pa_operation_unref(pa_stream_update_timing_info(
                m_stream,
                [](pa_stream *, int, void *self) { static_cast<Player *>(self)->takeTiming(); },
                this));
        }
        if (m_begins.empty())
            return -1;
        std::vector<double> sorted(m_begins.begin(), m_begins.end());
        std::sort(sorted.begin(), sorted.end());
        return now - sorted[sorted.size() / 2];
    }

private:
    [[noreturn]] static void fail(const char *reason)
    {
        std::fprintf(stderr, "vornic_play_sound: %s\n", reason);
        std::exit(1);
    }
    static double seconds(pa_usec_t time) { return static_cast<double>(time) / PA_USEC_PER_SEC; }
    /// The server's own numbers; the library's interpolation of them is off by up to 30 ms.
    void takeTiming()
    {
        m_awaitsTiming = false;
        const pa_timing_info *timing = pa_stream_get_timing_info(m_stream);
        if (!timing || !timing->playing)
            return;
        timeval wallClock {};
        pa_gettimeofday(&wallClock);
        const double then = seconds(pa_rtclock_now() - pa_timeval_diff(&wallClock, &timing->timestamp));
        const double heardThen
            = static_cast<double>(timing->read_index) / 4 / framesPerSecond - seconds(timing->sink_usec);
        m_begins.push_back(then - heardThen);
        if (m_begins.size() > 15)
            m_begins.pop_front();
    }
    void fill(size_t bytes)
    {
        std::vector<std::int16_t> samples(bytes / 2);
        for (size_t i = 0; i + 1 < samples.size(); i += 2)
            samples[i] = samples[i + 1] = static_cast<std::int16_t>(std::lround(m_wave(m_frame++) * 32767));
        pa_stream_write(m_stream, samples.data(), samples.size() * 2, nullptr, 0, PA_SEEK_RELATIVE);
    }

    Wave m_wave;
    pa_mainloop *m_loop;
    pa_context *m_context;
    pa_stream *m_stream = nullptr;
    std::int64_t m_frame = 0;
    bool m_awaitsTiming = false;
    double m_asked = 0;
    std::deque<double> m_begins; ///< when the sound began to be heard, by the server's last answers
};

void waitUntilHeard(Player &player, double seconds)
{
    while (player.heard() < seconds)
        player.turn();
}

/// The same while \a light stays as it is.
void waitUntilHeard(Player &player, double seconds, const vornic::test::ScreenLight &light, bool isWhite)
{
    constexpr double secondsApart = 0.01;
    double next = 0;
    for (double heard = player.heard(); heard < seconds; heard = player.heard()) {
        if (heard >= next) {
            light(isWhite);
            next = heard + secondsApart;
        }
        player.turn();
    }
}

void tellThatItPlays(Player &player)
{
    waitUntilHeard(player, 0.05);
    std::puts("playing");
    std::fflush(stdout);
}

int playTone(double seconds, double hertz, double amplitude)
{
    Player player([=](std::int64_t frame) { return amplitude * sine(hertz, frame); }, 2.0);
    tellThatItPlays(player);
    waitUntilHeard(player, seconds);
    return 0;
}

int playFlashes(int count, double apart, double hertz, const QRect &patch)
{
    // Rendering ahead of the server's needs, which a loaded machine meets late, moves no beep.
    Player player(
        [=](std::int64_t frame) {
            const double time = std::fmod(static_cast<double>(frame) / framesPerSecond, apart);
            const bool beeps = frame > framesPerSecond / 2 && time < beepSeconds;
            return beeps ? 0.5 * sine(hertz, frame) : 0.0;
        },
        0.5);
    const auto light = patch.isEmpty() ? vornic::test::screenLight() : vornic::test::screenPatch(patch);
    if (!light)
        return 1;
    tellThatItPlays(player);
    for (int i = 1; i <= count; ++i) {
        waitUntilHeard(player, i * apart, light, false);
        waitUntilHeard(player, i * apart + beepSeconds, light, true);
    }
    waitUntilHeard(player, count * apart + apart / 2, light, false);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 4 && words[0] == "tone")
        return playTone(std::stod(words[1]), std::stod(words[2]), std::stod(words[3]));
    if (words.size() == 3 && words[0] == "flashes")
        return playFlashes(std::stoi(words[1]), std::stod(words[2]), 1000, {});
    if (words.size() == 8 && words[0] == "flashes") {
        const QRect patch(std::stoi(words[4]), std::stoi(words[5]), std::stoi(words[6]), std::stoi(words[7]));
        return playFlashes(std::stoi(words[1]), std::stod(words[2]), std::stod(words[3]), patch);
    }
    std::fprintf(stderr,
                 "vornic_play_sound tone SECONDS HERTZ AMPLITUDE | "
                 "flashes COUNT SECONDS-APART [HERTZ X Y WIDTH HEIGHT]\n");
    return 2;
}
