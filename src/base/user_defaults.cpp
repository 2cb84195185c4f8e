#include "base/user_defaults.h"

#include "base/log.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace vornic::user_defaults {

namespace {

QSettings store()
{
    return {
        QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("kavlor"), QStringLiteral("Vornic")
    };
}

/// All files that the toolkit opens for the store: beside the user's own those for all users and programs.
QStringList filesOfStore()
{
    QStringList files;
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    for (const QString &folder : folders)
        for (const char *name : { "/kavlor/Vornic.conf", "/kavlor/Vornic.conf.lock", "/kavlor.conf" })
            files += folder + QLatin1String(name);
    return files;
}

/// False where one of the files is a named pipe, a device or the like: the toolkit would wait for it, perhaps for good.
bool mayBeOpened()
{
    const QStringList files = filesOfStore();
    return std::ranges::all_of(files, [](const QString &file) {
        const QFileInfo info(file);
        if (!info.exists() || info.isFile())
            return true;
        logMessage(QStringLiteral("%1 is not a regular file; nothing is stored, or read from it.").arg(file));
        return false;
    });
}

} // namespace

QVariant value(const QString &key)
{
    return mayBeOpened() ? store().value(key) : QVariant();
}

void setValue(const QString &key, const QVariant &value)
{
    if (mayBeOpened())
        store().setValue(key, value);
}

void remove(const QString &key)
{
    if (mayBeOpened())
        store().remove(key);
}

bool synchronize()
{
    if (!mayBeOpened())
        return false;
    QSettings settings = store();
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool isWritable()
{
    return store().isWritable();
}

QString location()
{
    return store().fileName();
}

} // namespace vornic::user_defaults
