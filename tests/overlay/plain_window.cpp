// A window of another program, wherever the desktop puts it: plain_window TITLE W H COLOUR [FILE]
//
// Told are "ready" once it is painted, and "pressed X Y", "released", "wheel". Dragging from it drags FILE's name: told
// are "drags", and at the end "dropped copy" or "dropped nothing".

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <QWidget>

#include <cstdio>
#include <utility>

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
        : m_colour(arguments.value(4))
        , m_file(arguments.value(5))
    {
        setWindowTitle(arguments.value(1));
        setWindowFlag(Qt::FramelessWindowHint);
        setFixedSize(arguments.value(2).toInt(), arguments.value(3).toInt());
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter(this).fillRect(rect(), m_colour);
        if (std::exchange(m_isNew, false))
            tell(QStringLiteral("ready"));
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        tell(QStringLiteral("pressed %1 %2").arg(event->position().x()).arg(event->position().y()));
    }
    void mouseMoveEvent(QMouseEvent * /*event*/) override
    {
        if (m_file.isEmpty())
            return;
        auto *drag = new QDrag(this); // deletes itself
        auto *files = new QMimeData;
        files->setUrls({ QUrl::fromLocalFile(m_file) });
        drag->setMimeData(files);
        tell(QStringLiteral("drags"));
        const Qt::DropAction action = drag->exec(Qt::CopyAction);
        tell(action == Qt::CopyAction ? QStringLiteral("dropped copy") : QStringLiteral("dropped nothing"));
    }
    void mouseReleaseEvent(QMouseEvent * /*event*/) override { tell(QStringLiteral("released")); }
    void wheelEvent(QWheelEvent * /*event*/) override { tell(QStringLiteral("wheel")); }

private:
    const QColor m_colour;
    const QString m_file;
    bool m_isNew = true;
};

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    Window window(QApplication::arguments());
    window.show();
    return QApplication::exec();
}
