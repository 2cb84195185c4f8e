# vornic_wayland_protocols(<target> <description.xml>...)
#
# A static library of what wayland-scanner makes of descriptions of protocols. Their headers are included as
# <wayland-protocols/description.h>.
pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)
pkg_get_variable(WAYLAND_PROTOCOLS wayland-protocols pkgdatadir)

function(vornic_wayland_protocols target)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}")
  file(MAKE_DIRECTORY "${folder}/wayland-protocols")
  foreach(description IN LISTS ARGN)
    get_filename_component(name "${description}" NAME_WLE)
    set(header "${folder}/wayland-protocols/${name}.h")
    set(source "${folder}/${name}.c")
    add_custom_command(OUTPUT "${header}" "${source}"
      COMMAND "${WAYLAND_SCANNER}" client-header "${description}" "${header}"
      COMMAND "${WAYLAND_SCANNER}" private-code "${description}" "${source}"
      DEPENDS "${description}" VERBATIM)
    list(APPEND made "${header}" "${source}")
  endforeach()
  add_library(${target} STATIC ${made})
  target_include_directories(${target} SYSTEM PUBLIC "${folder}")
  target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND)
endfunction()
