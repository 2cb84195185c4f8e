// Shows the overlay for tests and pictures, does what standard input says and tells what dragging has
// changed.
//
// Commands, one a line, each answered with "ok":
//   set KEYPATH VALUE     a property of the options, for example "set logoContext.LogoValidate true"
//   rect X Y W H          the selected rectangle
//   picture FILE          the logo's picture
//   recording 0|1         what the delegate answers, and reloadData
//   monitor NAME X Y W H  the fake display is the monitor of that name and size, there on the desktop
//   place                 places the overlay as the options say
//   main X Y W H          shows the main window there (toolkit coordinates); "main" alone takes it away
//   minimise              minimises the main window
//   restore               brings it back
//   start                 as a recording starts: minimises the main window, then records
//   aside                 leaves the desktop to other programs
//   dialog X Y W H        shows another window of the program; "dialog" alone hides it
//   tip X Y W H           shows a tool tip; "tip" alone hides it
//   bar X Y W H           shows a window that is kept on top; "bar" alone hides it
// Told: "rect X Y W H", "logo X Y", "picture W H" at every change, "main pressed" for a click on the main
// window.

#include "display/fake_display.h"
#include "observing/key_path_observer.h"
#include "options/VNOption.h"
#include "overlay/VNRecoderWindow.h"
#include "overlay/VNRecorderWndCtrl.h"
#include "overlay/VNRecorderWndCtrlDelegate.h"
#include "overlay/window_on_top.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

using namespace vornic;

void tell(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class MainWindow : public QWidget
{
public:
    MainWindow()
        : QWidget(nullptr, Qt::Window)
    {
        setWindowTitle(QStringLiteral("Stage"));
        setStyleSheet(QStringLiteral("background: #306030"));
    }

protected:
    void mousePressEvent(QMouseEvent * /*event*/) override { tell(QStringLiteral("main pressed")); }
};

class PlainWindow : public QWidget
{
public:
    PlainWindow(const QString &title, Qt::WindowFlags flags, const QString &colour)
        : QWidget(nullptr, flags)
    {
        setWindowTitle(title);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_StyledBackground);
        setStyleSheet("background: " + colour);
    }
};

class Stage : private VNRecorderWndCtrlDelegate
{
public:
    Stage()
        : m_overlay(VNRecorderWndCtrl::shareRecorderWndCtrl())
    {
        m_overlay.setOptions(&m_options);
        m_overlay.setDelegate(this);
        QObject::connect(&m_options, &VNOption::selectedRectChanged, [this] {
            const QRectF rect = m_options.selectedRect();
            tell(QStringLiteral("rect %1 %2 %3 %4")
                     .arg(rect.x())
                     .arg(rect.y())
                     .arg(rect.width())
                     .arg(rect.height()));
        });
        QObject::connect(m_options.logoContext(), &VNLogoContext::LogoPositionChanged, [this] {
            const VNLogoContext &logo = *m_options.logoContext();
            tell(QStringLiteral("logo %1 %2 %3 %4")
                     .arg(logo.logoPositionX())
                     .arg(logo.logoPositionY())
                     .arg(logo.getNSImage().width())
                     .arg(logo.getNSImage().height()));
        });
    }
    ~Stage() override
    {
        m_overlay.window()->orderOut();
        m_overlay.window()->setWindowAbove(nullptr);
        m_overlay.setDelegate(nullptr);
        m_overlay.setOptions(nullptr);
    }

    void command(const QString &line)
    {
        const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
        const QString &verb = words.value(0);
        if (verb == u"set")
            KeyPathObserver(&m_options, words.value(1).toLatin1()).setValue(line.section(u' ', 2));
        else if (verb == u"rect")
            m_options.setSelectedRect(rectangle(words));
        else if (verb == u"picture")
            m_options.logoContext()->setNSImage(QImage(words.value(1)));
        else if (verb == u"recording")
            m_isRecording = words.value(1) == u"1";
        else if (verb == u"monitor")
            chooseMonitor(words);
        else if (verb == u"main")
            showMain(words);
        else if (verb == u"minimise" || verb == u"start")
            m_main.showMinimized();
        else if (verb == u"restore")
            m_main.showNormal();
        else if (verb == u"aside")
            m_overlay.stepAside();
        else if (verb == u"dialog")
            showThere(m_dialog, words);
        else if (verb == u"tip")
            showThere(m_tip, words);
        else if (verb == u"bar")
            showBar(words);
        if (verb == u"start")
            m_isRecording = true;
        if (verb == u"place")
            m_overlay.placeWindow();
        m_overlay.reloadData();
        m_overlay.window()->waitUntilDrawn();
        // A press that comes after the answer finds the windows where they were put.
        QGuiApplication::sync();
        tell(QStringLiteral("ok"));
    }

private:
    bool VNRecorderWndCtrlIsRecording(VNRecorderWndCtrl & /*controller*/) override { return m_isRecording; }

    static void chooseMonitor(const QStringList &words)
    {
        const auto display = std::dynamic_pointer_cast<FakeDisplay>(mainDisplay());
        const QRect place = rectangle(words.mid(1)).toRect();
        display->setPicture(QImage(place.size(), QImage::Format_RGB32));
        display->setReport({ .origin = place.topLeft(), .name = words.value(1) });
    }

    static QRectF rectangle(const QStringList &words)
    {
        return { words.value(1).toDouble(),
                 words.value(2).toDouble(),
                 words.value(3).toDouble(),
                 words.value(4).toDouble() };
    }

    static void showThere(QWidget &window, const QStringList &words)
    {
        // Shown where it belongs: moved afterwards, it would race the window manager.
        window.setGeometry(rectangle(words).toRect());
        window.setVisible(words.size() > 1);
    }

    void showMain(const QStringList &words)
    {
        showThere(m_main, words);
        m_overlay.window()->setWindowAbove(words.size() > 1 ? &m_main : nullptr);
    }

    void showBar(const QStringList &words)
    {
        if (!m_onTop) {
            m_bar.winId();
            m_onTop = WindowOnTop::create(*m_bar.windowHandle());
        }
        showThere(m_bar, words);
        if (words.size() == 1)
            m_onTop.reset();
    }

    VNOption m_options;
    MainWindow m_main;
    PlainWindow m_dialog { QStringLiteral("Dialog"), Qt::Window, QStringLiteral("#803080") };
    PlainWindow m_tip { QStringLiteral("Tip"), Qt::ToolTip, QStringLiteral("#e0e080") };
    PlainWindow m_bar { QStringLiteral("Bar"),
                        Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint,
                        QStringLiteral("#208080") };
    std::unique_ptr<WindowOnTop> m_onTop;
    VNRecorderWndCtrl &m_overlay;
    bool m_isRecording = false;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Stage stage;
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string line;
        if (std::getline(std::cin, line))
            stage.command(QString::fromStdString(line));
        else
            QApplication::quit();
    });
    tell(QStringLiteral("ready"));
    return QApplication::exec();
}
