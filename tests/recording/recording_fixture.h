#pragma once

#include "program_fixture.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"
#include "support/xvfb_server.h"

#include <algorithm>
#include <csignal>

namespace vornic {

/// The built program with an X server of the test's own.
class RecordingTest : public ProgramTest
{
protected:
    void startServer(QSize size = { 1280, 720 }, const QStringList &arguments = {})
    {
        server = test::XvfbServer::start({ size, 24, arguments });
        ASSERT_TRUE(server);
        painter = test::ScreenPainter::connect();
        ASSERT_TRUE(painter);
    }

    std::unique_ptr<test::XvfbServer> server;
    std::unique_ptr<test::ScreenPainter> painter;
};

/// The largest difference of a channel in the inner part of \a patch from \a colour. At the edges, as far as
/// a compression block of 16 pixels reaches, no lossy picture is flat.
inline int differenceFrom(const QImage &picture, const QRect &patch, QRgb colour)
{
    int most = 0;
    for (int y = patch.top() + 16; y <= patch.bottom() - 16; ++y)
        for (int x = patch.left() + 16; x <= patch.right() - 16; ++x) {
            const QRgb pixel = picture.pixel(x, y);
            most = std::max({ most,
                              std::abs(qRed(pixel) - qRed(colour)),
                              std::abs(qGreen(pixel) - qGreen(colour)),
                              std::abs(qBlue(pixel) - qBlue(colour)) });
        }
    return most;
}

} // namespace vornic
