#include "app/session/stored_options.h"

#include "base/keyed_archive.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "options/VNOption.h"

#include <optional>

namespace vornic {

namespace {

const QString optionsKey = QStringLiteral("com.kavlor.options");
const QString brokenKey = QStringLiteral("com.kavlor.options.broken");

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

void storeOptions(const VNOption &options)
{
    user_defaults::setValue(optionsKey, archivedData(options));
    user_defaults::synchronize();
}

} // namespace vornic
