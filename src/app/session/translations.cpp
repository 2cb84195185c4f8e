#include "app/session/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace vornic {

Translations::Translations()
{
    const QLocale locale;
    if (m_toolkit.load(locale,
                       QStringLiteral("qtbase"),
                       QStringLiteral("_"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_toolkit);
    if (m_program.load(locale, QStringLiteral("vornic"), QStringLiteral("_"), QStringLiteral(":/i18n")))
        QCoreApplication::installTranslator(&m_program);
}

} // namespace vornic
