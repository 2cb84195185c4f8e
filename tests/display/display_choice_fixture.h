#pragma once

#include "display/bitmap_image.h"
#include "display/display_backend.h"

#include <gtest/gtest.h>

#include <string>

namespace vornic::test {

/// Leaves the process without a chosen display and without one to choose.
class DisplayChoiceTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *variable : { "DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE" })
            qunsetenv(variable);
        qunsetenv("VORNIC_DISPLAY");
        setMainDisplay(nullptr);
    }
    void TearDown() override
    {
        qunsetenv("VORNIC_DISPLAY");
        setMainDisplay(nullptr);
    }

    static std::string reason() { return noDisplayReason().toStdString(); }

    static void expectNoDisplay()
    {
        EXPECT_EQ(mainDisplay()->mainDisplayId(), 0U);
        EXPECT_EQ(mainDisplay()->mainDisplaySize(), QSize(0, 0));
        EXPECT_FALSE(mainDisplay()->grab(QRect(0, 0, 10, 10)));
        EXPECT_FALSE(mainDisplay()->cursorShape());
        EXPECT_EQ(mainDisplay()->pointerPosition(), QPoint(0, 0));
    }
};

} // namespace vornic::test
