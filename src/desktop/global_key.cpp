#include "desktop/global_key.h"

#include "base/wayland_session.h"
#include "desktop/portal_global_key.h"
#ifdef VORNIC_X11
#    include "desktop/x11_global_key.h"
#endif

#include <utility>

namespace vornic {

namespace {

class NoGlobalKey final : public GlobalKey
{
public:
    Answer listenFor(const QString &portableText) override
    {
        return portableText.isEmpty() ? Answer::Heard : Answer::NotOnThisDesktop;
    }
};

std::unique_ptr<GlobalKey> createX11()
{
#ifdef VORNIC_X11
    return X11GlobalKey::create();
#else
    return nullptr;
#endif
}

} // namespace

std::unique_ptr<GlobalKey> GlobalKey::create()
{
    if (auto key = createX11())
        return key;
    if (isWaylandSession())
        return std::make_unique<PortalGlobalKey>();
    return std::make_unique<NoGlobalKey>();
}

std::unique_ptr<GlobalKey> GlobalKey::createForMoment()
{
    auto key = createX11();
    return key ? std::move(key) : std::make_unique<NoGlobalKey>();
}

} // namespace vornic
