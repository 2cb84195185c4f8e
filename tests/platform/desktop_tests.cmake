find_package(Qt6 REQUIRED COMPONENTS Test)

add_library(vornic_desktop_test_support STATIC
  desktop/client_process.cpp
  desktop/fake_service.cpp
  desktop/private_bus.cpp
)
target_link_libraries(vornic_desktop_test_support
  PUBLIC vornic::test_support Qt6::DBus Qt6::Test GTest::gtest
  PRIVATE vornic::warnings)
set_target_properties(vornic_desktop_test_support PROPERTIES AUTOMOC ON)

add_executable(vornic_desktop_client desktop/desktop_client.cpp)
target_link_libraries(vornic_desktop_client PRIVATE vornic::platform Qt6::DBus vornic::warnings)
target_compile_definitions(vornic_desktop_test_support
  PRIVATE DESKTOP_CLIENT="$<TARGET_FILE:vornic_desktop_client>")
add_dependencies(vornic_desktop_test_support vornic_desktop_client)

pkg_check_modules(XCB_SCREENSAVER REQUIRED IMPORTED_TARGET xcb xcb-screensaver)
vornic_test(desktop/tst_idle_inhibitor.cpp
  LIBS vornic_desktop_test_support PkgConfig::XCB_SCREENSAVER LABELS x11)
foreach(test IN ITEMS tst_notifier tst_reveal tst_single_instance)
  vornic_test(desktop/${test}.cpp LIBS vornic_desktop_test_support LABELS unit)
endforeach()
