// Lets a rectangle be chosen on the screen, for tests and pictures: selection_stage
//
// "begin X Y W H" on standard input begins with that rectangle (screen coordinates). Told: "ready" at the start,
// "taken X Y W H" or "cancelled" at the end of each choice; "quit" ends the program in the middle of one.

#include "selection/region_selection.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QStringList>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

namespace {

using namespace vornic;

void tell(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Stage
{
public:
    void command(const QStringList &words)
    {
        if (words.value(0) == u"quit") {
            QApplication::quit();
            return;
        }
        m_selection = std::make_unique<RegionSelection>(QRectF(words.value(1).toDouble(),
                                                               words.value(2).toDouble(),
                                                               words.value(3).toDouble(),
                                                               words.value(4).toDouble()));
        QObject::connect(m_selection.get(), &RegionSelection::taken, [](const QRectF &rectangle) {
            tell(QStringLiteral("taken %1 %2 %3 %4")
                     .arg(rectangle.x())
                     .arg(rectangle.y())
                     .arg(rectangle.width())
                     .arg(rectangle.height()));
        });
        QObject::connect(
            m_selection.get(), &RegionSelection::cancelled, [] { tell(QStringLiteral("cancelled")); });
        m_selection->begin();
    }

private:
    std::unique_ptr<RegionSelection> m_selection;
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
            stage.command(QString::fromStdString(line).split(u' '));
        else
            QApplication::quit();
    });
    tell(QStringLiteral("ready"));
    return QApplication::exec();
}
