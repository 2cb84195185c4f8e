#include "support/screen_light.h"

namespace vornic::test {

ScreenLight screenLight()
{
    return {};
}

} // namespace vornic::test
