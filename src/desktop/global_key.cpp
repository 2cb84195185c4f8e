#include "desktop/global_key.h"

#ifdef VORNIC_X11
#    include "desktop/x11_global_key.h"
#endif

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

} // namespace

std::unique_ptr<GlobalKey> GlobalKey::create()
{
#ifdef VORNIC_X11
    if (auto key = X11GlobalKey::create())
        return key;
#endif
    return std::make_unique<NoGlobalKey>();
}

} // namespace vornic
