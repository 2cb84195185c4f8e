#include "app/cli/answer.h"

#include "app/cli/telling.h"
#include "base/error_stream.h"
#include "base/native_path.h"
#include "base/printable.h"
#include "base/standard_output.h"

#include <QCoreApplication>

#include <unistd.h>

#include <chrono>

namespace vornic {

int answer(const QByteArray &text, int status, int unwritten)
{
    // First what led to it, where both are read on one terminal.
    standardError().endRedrawnLine();
    standardError().flush(std::chrono::seconds(1));
    if (writeToStandardOutput(text))
        return status;
    const QString reason = qt_error_string();
    tellError(QCoreApplication::translate("vornic", "Standard output could not be written: %1.").arg(reason));
    return unwritten;
}

QByteArray pathForAnswer(const QString &path)
{
    return ::isatty(STDOUT_FILENO) == 1 ? printable(path).toUtf8() : nativePath(path);
}

} // namespace vornic
