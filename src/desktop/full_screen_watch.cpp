#include "desktop/full_screen_watch.h"

#ifdef VORNIC_X11
#    include "desktop/x11_full_screen_watch.h"
#endif

namespace vornic {

namespace {

class NoFullScreenWatch final : public FullScreenWatch
{
};

} // namespace

std::unique_ptr<FullScreenWatch> FullScreenWatch::create()
{
#ifdef VORNIC_X11
    if (auto watch = X11FullScreenWatch::create())
        return watch;
#endif
    return std::make_unique<NoFullScreenWatch>();
}

} // namespace vornic
