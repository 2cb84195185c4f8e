#pragma once

#include "base/log.h"
#include "display/bitmap_image.h"
#include "display/display_backend.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"
#include "support/xvfb_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace vornic::test {

/// The backend named \a id at the $DISPLAY of now; null with its sentence.
inline std::unique_ptr<DisplayBackend> createBackend(std::string_view id, QString &whyNot)
{
    const auto entry = std::ranges::find(displayBackends(), id, &DisplayBackendEntry::id);
    return entry == displayBackends().end() ? nullptr : entry->create(whyNot);
}

/// A private X server with a painter on it and the display under test.
class X11DisplayTest : public testing::Test
{
protected:
    // Nothing is to be logged on a server that works: a grabber that has found its reports wanting says so.
    X11DisplayTest()
    {
        setLogSink([](const QString &message) { ADD_FAILURE() << qPrintable(message); });
    }
    ~X11DisplayTest() override { setLogSink({}); }

    void startServer(const XvfbServer::Options &options)
    {
        m_server = XvfbServer::start(options);
        ASSERT_TRUE(m_server);
        m_painter = ScreenPainter::connect();
        ASSERT_TRUE(m_painter);
        QString whyNot;
        m_display = createBackend("x11", whyNot);
        ASSERT_TRUE(m_display) << qPrintable(whyNot);
    }

    [[nodiscard]] QRect wholeDisplay() const { return { QPoint(0, 0), m_display->mainDisplaySize() }; }

    /// A grab of \a rectangle as a picture; null where there is no image.
    [[nodiscard]] QImage grabbed(const QRect &rectangle) const
    {
        const auto image = m_display->grab(rectangle);
        return image ? pixelsOf(*image) : QImage();
    }

    /// Whether a grab of the whole display shows what the server shows.
    [[nodiscard]] bool isUpToDate() const
    {
        return grabbed(wholeDisplay()) == m_painter->screen(wholeDisplay());
    }

    // In the order in which they must be made; they end in the opposite one.
    std::unique_ptr<XvfbServer> m_server;
    std::unique_ptr<ScreenPainter> m_painter;
    std::unique_ptr<DisplayBackend> m_display;
};

} // namespace vornic::test
