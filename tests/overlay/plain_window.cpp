// A window of another program, wherever the desktop puts it: plain_window TITLE W H COLOUR
//
// Told are "ready" once it is on the screen, and "pressed X Y", "released", "wheel".

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
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
    void mouseReleaseEvent(QMouseEvent * /*event*/) override { tell(QStringLiteral("released")); }
    void wheelEvent(QWheelEvent * /*event*/) override { tell(QStringLiteral("wheel")); }

private:
    const QColor m_colour;
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
