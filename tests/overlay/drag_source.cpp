// A window of another program, for tests: drag_source TITLE X Y W H COLOUR [FILE]
//
// The title "Panel" makes it the panel of a desktop, "Background" lays it beneath everything,
// "Film" makes it full-screen.
// "Target" takes whatever is dropped on it, and tells "entered" and "taken".
// Tells "pressed X Y", "dragged", "wheel" on standard output. Dragging from it drags FILE's name: told are
// "drags", "answer 1" or "answer 0" whenever the window below says whether it would take it, and at the end
// "dropped copy" or "dropped nothing".

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void tell(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Window : public QWidget
{
public:
    explicit Window(const QStringList &arguments)
        : m_file(arguments.value(7))
    {
        setWindowTitle(arguments.value(1));
        setAcceptDrops(arguments.value(1) == u"Target");
        setAttribute(Qt::WA_X11NetWmWindowTypeDock, arguments.value(1) == u"Panel");
        setWindowFlag(Qt::BypassWindowManagerHint, arguments.value(1) == u"Background");
        setGeometry(arguments.value(2).toInt(),
                    arguments.value(3).toInt(),
                    arguments.value(4).toInt(),
                    arguments.value(5).toInt());
        QPalette colours = palette();
        colours.setColor(QPalette::Window, QColor(arguments.value(6)));
        setPalette(colours);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        tell(QStringLiteral("pressed %1 %2").arg(event->position().x()).arg(event->position().y()));
    }

    void mouseMoveEvent(QMouseEvent * /*event*/) override
    {
        if (m_file.isEmpty()) {
            tell(QStringLiteral("dragged"));
            return;
        }
        auto *drag = new QDrag(this); // deletes itself
        auto *files = new QMimeData;
        files->setUrls({ QUrl::fromLocalFile(m_file) });
        drag->setMimeData(files);
        tell(QStringLiteral("drags"));
        const Qt::DropAction action = drag->exec(Qt::CopyAction);
        tell(action == Qt::CopyAction ? QStringLiteral("dropped copy") : QStringLiteral("dropped nothing"));
    }

    void dragEnterEvent(QDragEnterEvent *event) override
    {
        tell(QStringLiteral("entered"));
        event->acceptProposedAction();
    }

    void dropEvent(QDropEvent *event) override
    {
        tell(QStringLiteral("taken"));
        event->acceptProposedAction();
    }

    void wheelEvent(QWheelEvent * /*event*/) override { tell(QStringLiteral("wheel")); }

private:
    const QString m_file;
};

/// Tells the answers of the windows over which something is dragged: XDND, XdndStatus.
class Answers : public QAbstractNativeEventFilter
{
public:
    Answers()
    {
        auto *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        constexpr char name[] = "XdndStatus";
        auto *reply = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr);
        m_status = reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
        std::free(reply);
    }

    bool nativeEventFilter(const QByteArray & /*type*/, void *event, qintptr * /*result*/) override
    {
        xcb_client_message_event_t message;
        std::memcpy(&message, event, sizeof message);
        if ((message.response_type & 0x7f) == XCB_CLIENT_MESSAGE && message.type == m_status)
            tell(QStringLiteral("answer %1").arg(message.data.data32[1] & 1U));
        return false;
    }

private:
    xcb_atom_t m_status;
};

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    Answers answers;
    QCoreApplication::instance()->installNativeEventFilter(&answers);
    Window window(QApplication::arguments());
    if (window.windowTitle() == u"Film")
        window.showFullScreen();
    else
        window.show();
    if (window.windowTitle() == u"Background")
        window.lower();
    tell(QStringLiteral("ready"));
    return QApplication::exec();
}
