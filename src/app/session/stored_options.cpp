#include "app/session/stored_options.h"

#include "base/keyed_archive.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "options/VNOption.h"

#include <QCoreApplication>

#include <optional>

namespace vornic {

namespace {

const QString optionsKey = QStringLiteral("com.kavlor.options");
const QString brokenKey = QStringLiteral("com.kavlor.options.broken");

QString cannotBeStoredText()
{
    return QCoreApplication::translate("vornic", "The options cannot be saved: %1 cannot be written to.")
        .arg(user_defaults::location());
}

} // namespace

std::unique_ptr<VNOption> loadOptions()
{
    const QVariant stored = user_defaults::value(optionsKey);
    if (!stored.isValid())
        return std::make_unique<VNOption>();
    const std::optional<KeyedUnarchiver> archive = KeyedUnarchiver::create(stored.toByteArray());
    std::unique_ptr<VNOption> options = archive ? VNOption::createWithCoder(*archive) : nullptr;
    if (!options) {
        logMessage(QStringLiteral("The stored options could not be read and are set aside."));
        user_defaults::setValue(brokenKey, stored);
        user_defaults::remove(optionsKey);
    }
    return options;
}

bool storeOptions(const VNOption &options)
{
    user_defaults::setValue(optionsKey, archivedData(options));
    if (user_defaults::synchronize())
        return true;
    logMessage(cannotBeStoredText());
    return false;
}

QString whyOptionsCannotBeStored()
{
    return user_defaults::isWritable() ? QString() : cannotBeStoredText();
}

} // namespace vornic
