#pragma once

#include "app/VornicAppDelegate.h"
#include "app/session/session_fakes.h"
#include "app/window/main_window.h"
#include "window_main.h"

#include <QWidget>

namespace vornic {

/// Hands on to the main window what the session tells it, as the program's front end does.
class MainWindowFrontEnd final : public FakeFrontEnd
{
public:
    MainWindow *window = nullptr;
    std::function<void()> onKept;

    void setBusy(bool busy) override
    {
        FakeFrontEnd::setBusy(busy);
        if (window)
            window->setBusy(busy);
    }
    void recordingKept(const QString &id) override
    {
        told += "kept " + id;
        if (onKept)
            onKept();
    }
    void reloadData() override
    {
        FakeFrontEnd::reloadData();
        if (window)
            window->reloadData();
    }
};

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

    ~MainWindowTest() override { frontEnd.window = nullptr; }

    void makeWindow()
    {
        frontEnd.window = nullptr;
        window = std::make_unique<MainWindow>(delegate);
        frontEnd.window = window.get();
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

    MainWindowFrontEnd frontEnd;
    FakeAudioControl audioControl;
    VornicAppDelegate delegate;
    std::unique_ptr<MainWindow> window;
};

} // namespace vornic
