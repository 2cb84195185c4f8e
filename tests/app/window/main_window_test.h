#pragma once

#include "app/VornicAppDelegate.h"
#include "app/session/session_fakes.h"
#include "app/window/main_window.h"
#include "window_main.h"

#include <QWidget>

namespace vornic {

/// The main window of a program whose front end, devices and display are fakes.
class MainWindowTest : public testing::Test
{
protected:
    explicit MainWindowTest(const QStringList &audioInputs = { "Microphone", "Monitor of Speakers" })
        : delegate(frontEnd.frontEnd(), std::make_unique<VNOption>())
    {
        audioControl.names = audioInputs;
        delegate.setAudioControl(&audioControl);
        delegate.applicationDidFinishLaunching();
        makeWindow();
    }

    void makeWindow()
    {
        window = std::make_unique<MainWindow>(delegate);
        window->show();
    }
    VNOption &options() { return *delegate.options(); }
    VNLogoContext &logo() { return *options().logoContext(); }
    template<typename Control>
    Control &control(const char *name)
    {
        auto *found = window->findChild<Control *>(QLatin1StringView(name));
        EXPECT_TRUE(found) << name;
        return *found;
    }
    QWidget &widget(const char *name) { return control<QWidget>(name); }

    FakeFrontEnd frontEnd;
    FakeAudioControl audioControl;
    VornicAppDelegate delegate;
    std::unique_ptr<MainWindow> window;
};

} // namespace vornic
