// Covers the monitor of $WAYLAND_DISPLAY with a known picture, in which a number is another each time that the compositor
// draws it:
//
//   vornic_show_numbers [--still]
//
// Prints each number with the seconds of CLOCK_MONOTONIC at which it was drawn, one a line, and ends with the compositor
// or a signal. --still: shows number 0, and then nothing moves.

#include "support/test_pictures.h"
#include "support/wayland_painter.h"

#include <QByteArray>
#include <QImage>

#include <unistd.h>

#include <chrono>
#include <cstdio>

int main(int argc, char **argv)
{
    using namespace vornic::test;
    const bool isStill = argc > 1 && QByteArray(argv[1]) == "--still";
    const auto painter = WaylandPainter::start();
    if (!painter)
        return 1;
    const QImage picture = knownPicture(painter->pixels());
    for (int number = 0; painter->draw(numbered(picture, number)); ++number) {
        const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
        std::printf("%d %.6f\n", number, now.count());
        std::fflush(stdout);
        while (isStill)
            pause();
    }
    return 1;
}
