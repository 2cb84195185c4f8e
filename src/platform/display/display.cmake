# The display backends; included by the platform library's CMakeLists.txt.

pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-shm xcb-randr xcb-xfixes xcb-damage)
pkg_check_modules(XXHASH REQUIRED IMPORTED_TARGET libxxhash)

target_sources(vornic_platform
  PRIVATE
    display/changed_bands.cpp
    display/display_backend.cpp
    display/fake_display.cpp
    display/main_display.cpp
    display/null_display.cpp
    display/shared_pixels.cpp
    display/x11_connection.cpp
    display/x11_damage.cpp
    display/x11_display.cpp
    display/x11_grabber.cpp
    display/x11_main_monitor.cpp
    display/x11_pixel_format.cpp
    display/x11_pointer.cpp
    display/x11_segment.cpp
  PUBLIC
    FILE_SET HEADERS FILES
      display/display_backend.h
      display/display_rectangle.h
      display/fake_display.h
      display/main_display.h
      display/null_display.h
)
target_link_libraries(vornic_platform PRIVATE PkgConfig::XCB PkgConfig::XXHASH)
