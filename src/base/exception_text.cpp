#include "base/exception_text.h"

#include <QCoreApplication>

#include <exception>
#include <new>
#include <system_error>

namespace vornic {

QString textOfHandledException()
{
    try {
        throw;
    } catch (const std::bad_alloc &) {
        return QCoreApplication::translate("vornic", "there is not enough memory");
    } catch (const std::system_error &error) {
        return QString::fromStdString(error.code().message());
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return QStringLiteral("no reason is known");
    }
}

} // namespace vornic
