#include "display/display_backend.h"

#include "display/fake_display.h"
#include "display/null_display.h"
#ifdef VORNIC_X11
#    include "display/x11/x11_display.h"
#    include "display/x11/x11_frozen_server.h"
#    include "x11/x11_connection.h"
#endif
#ifdef VORNIC_WAYLAND
#    include "display/portal/portal_display.h"
#endif

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace vornic {

namespace {

std::unique_ptr<DisplayBackend> createFake(QString & /*whyNot*/)
{
    return std::make_unique<FakeDisplay>(QSize(1920, 1080));
}

/// Takes what the backends before it have said as its own sentence.
std::unique_ptr<DisplayBackend> createNull(QString &whyNot)
{
    if (whyNot.isEmpty())
        whyNot = QCoreApplication::translate(
            "vornic",
            "This build of Vornic cannot record: it was made without support for any kind of display.");
    return std::make_unique<NullDisplay>(whyNot);
}

bool isForNone()
{
    return false;
}

constexpr std::array backendTable {
#ifdef VORNIC_X11
    DisplayBackendEntry { "x11", true, X11Display::isForThisSession, X11Display::create },
#endif
#ifdef VORNIC_WAYLAND
    DisplayBackendEntry { "portal", true, PortalDisplay::isForThisSession, PortalDisplay::create },
#endif
    DisplayBackendEntry { "fake", false, isForNone, createFake },
    DisplayBackendEntry { "null", true, isForNone, createNull },
};

QString listOfIds()
{
    QStringList ids;
    for (const DisplayBackendEntry &entry : backendTable)
        ids += QString::fromUtf8(entry.id.data(), static_cast<qsizetype>(entry.id.size()));
    return ids.join(QStringLiteral(", "));
}

std::unique_ptr<DisplayBackend> createForced(const QByteArray &id)
{
    const auto entry = std::ranges::find(backendTable, std::string_view(id), &DisplayBackendEntry::id);
    // What a backend that cannot work puts its own sentence in place of.
    QString whyNot = QCoreApplication::translate(
        "vornic", "The display is switched off by the environment variable VORNIC_DISPLAY.");
    if (entry == backendTable.end()) {
        whyNot = QCoreApplication::translate(
                     "vornic", "VORNIC_DISPLAY names the display backend \"%1\", but there are only: %2.")
                     .arg(QString::fromUtf8(id), listOfIds());
    } else if (auto display = entry->create(whyNot)) {
        return display;
    }
    return createNull(whyNot);
}

/// Where none works, the last one that is for the session has its say: a Wayland session may have an X server, too, which
/// stands before. In no session at all everybody has.
std::unique_ptr<DisplayBackend> createBest()
{
    QStringList refusals;
    QString refusal;
    for (const DisplayBackendEntry &entry : backendTable) {
        if (!entry.selectedByItself)
            continue;
        QString whyNot = refusal.isEmpty() ? refusals.join(QLatin1Char(' ')) : refusal;
        if (auto display = entry.create(whyNot))
            return display;
        refusals += whyNot;
        if (entry.isForThisSession())
            refusal = whyNot;
    }
    return nullptr;
}

struct ChosenDisplay {
    std::mutex mutex;
    std::shared_ptr<DisplayBackend> display;
};

ChosenDisplay &chosenDisplay()
{
    static ChosenDisplay chosen;
    return chosen;
}

} // namespace

std::span<const DisplayBackendEntry> displayBackends()
{
    return backendTable;
}

std::shared_ptr<DisplayBackend> mainDisplay()
{
    ChosenDisplay &chosen = chosenDisplay();
    const std::lock_guard lock(chosen.mutex);
    if (!chosen.display) {
        const QByteArray forced = qgetenv("VORNIC_DISPLAY");
        chosen.display = forced.isEmpty() ? createBest() : createForced(forced);
    }
    return chosen.display;
}

QString noDisplayReason()
{
    const auto display = mainDisplay();
    const auto *none = dynamic_cast<const NullDisplay *>(display.get());
    return none ? none->reason() : QString();
}

void leaveSilentDisplay()
{
#ifdef VORNIC_X11
    leaveFrozenServer();
#endif
}

void abandonDisplay()
{
#ifdef VORNIC_X11
    X11Connection::closeAll();
#endif
}

void setMainDisplay(std::shared_ptr<DisplayBackend> display)
{
    ChosenDisplay &chosen = chosenDisplay();
    {
        const std::lock_guard lock(chosen.mutex);
        std::swap(chosen.display, display);
    }
    // The display before ends here, outside the lock.
}

} // namespace vornic
