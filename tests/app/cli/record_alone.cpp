#include "app/cli/command_line.h"
#include "app/cli/record_command.h"

#include <QCoreApplication>

/// "vornic record" without the rest of the program: shows what it links.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return vornic::runRecordCommand(vornic::parseCommandLine(QCoreApplication::arguments()));
}
