# What the desktop's services do for the program; included by the platform library's CMakeLists.txt.

pkg_check_modules(XCB_SCREENSAVER REQUIRED IMPORTED_TARGET xcb xcb-screensaver)

target_sources(vornic_platform
  PRIVATE
    desktop/application_adaptor.cpp
    desktop/dbus_call.cpp
    desktop/dbus_inhibition.cpp
    desktop/idle_inhibitor.cpp
    desktop/notifier.cpp
    desktop/reveal.cpp
    desktop/single_instance.cpp
    desktop/x11_blanking_pause.cpp
  PUBLIC
    FILE_SET HEADERS FILES
      desktop/application_id.h
      desktop/idle_inhibitor.h
      desktop/notifier.h
      desktop/reveal.h
      desktop/single_instance.h
)
target_link_libraries(vornic_platform PRIVATE Qt6::DBus PkgConfig::XCB_SCREENSAVER)
