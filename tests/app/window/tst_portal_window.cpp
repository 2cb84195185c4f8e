#include "app/window/portal_window.h"

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(PortalWindow, OfTheXServerItIsItsNumberThere)
{
    const QWidget window;
    EXPECT_EQ(portalNameOf(&window, "xcb"), "x11:" + QString::number(window.winId(), 16));
}

TEST(PortalWindow, ElsewhereItHasNoName)
{
    const QWidget window;
    EXPECT_EQ(portalNameOf(&window, "wayland"), "");
    EXPECT_EQ(portalNameOf(nullptr, "xcb"), "");
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
