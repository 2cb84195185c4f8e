#include "app/window/main_window_link.h"

#include "app/window/main_window.h"

namespace vornic {

QWidget *MainWindowLink::visible() const
{
    return window && window->isVisible() ? window : nullptr;
}

} // namespace vornic
