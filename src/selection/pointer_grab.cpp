#include "selection/pointer_grab.h"

#ifdef VORNIC_X11
#    include "selection/x11/x11_pointer_grab.h"
#endif

namespace vornic {

std::unique_ptr<PointerGrab> createPointerGrab()
{
#ifdef VORNIC_X11
    return X11PointerGrab::create();
#else
    return nullptr;
#endif
}

} // namespace vornic
