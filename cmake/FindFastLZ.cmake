# FindFastLZ
#
# Defines FastLZ::FastLZ: the system's library (fastlz.h and libfastlz) where there is one, else a static
# library built from the unmodified source that comes with Verilator, as some distributions have no
# package of FastLZ itself.
#
# Looked for: FastLZ_INCLUDE_DIR and FastLZ_LIBRARY, then FastLZ_SOURCE_DIR (the folder of fastlz.c).
find_path(FastLZ_INCLUDE_DIR fastlz.h)
find_library(FastLZ_LIBRARY NAMES fastlz)

set(fastlz_source_hints "")
foreach(prefix IN LISTS CMAKE_PREFIX_PATH CMAKE_SYSTEM_PREFIX_PATH)
  list(APPEND fastlz_source_hints "${prefix}/share/verilator/include/gtkwave")
endforeach()
find_path(FastLZ_SOURCE_DIR fastlz.c PATHS ${fastlz_source_hints} NO_DEFAULT_PATH)
unset(fastlz_source_hints)

include(FindPackageHandleStandardArgs)
if(FastLZ_INCLUDE_DIR AND FastLZ_LIBRARY)
  find_package_handle_standard_args(FastLZ REQUIRED_VARS FastLZ_LIBRARY FastLZ_INCLUDE_DIR)
else()
  find_package_handle_standard_args(FastLZ
    REQUIRED_VARS FastLZ_SOURCE_DIR
    REASON_FAILURE_MESSAGE "install FastLZ, or Verilator, which carries its source")
endif()
mark_as_advanced(FastLZ_INCLUDE_DIR FastLZ_LIBRARY FastLZ_SOURCE_DIR)

if(FastLZ_FOUND AND NOT TARGET FastLZ::FastLZ)
  if(FastLZ_INCLUDE_DIR AND FastLZ_LIBRARY)
    add_library(FastLZ::FastLZ UNKNOWN IMPORTED GLOBAL)
    set_target_properties(FastLZ::FastLZ PROPERTIES
      IMPORTED_LOCATION "${FastLZ_LIBRARY}"
      INTERFACE_INCLUDE_DIRECTORIES "${FastLZ_INCLUDE_DIR}")
  else()
    add_library(fastlz_bundle STATIC "${FastLZ_SOURCE_DIR}/fastlz.c")
    add_library(FastLZ::FastLZ ALIAS fastlz_bundle)
    # The header alone goes where it is seen: beside it lie headers of other libraries, older than the system's.
    configure_file("${FastLZ_SOURCE_DIR}/fastlz.h" "${CMAKE_CURRENT_BINARY_DIR}/fastlz/fastlz.h" COPYONLY)
    target_include_directories(fastlz_bundle SYSTEM INTERFACE "${CMAKE_CURRENT_BINARY_DIR}/fastlz")
    # Bytes one at a time: the 16-bit accesses it uses otherwise are unaligned. The stream is the same.
    target_compile_definitions(fastlz_bundle PRIVATE FASTLZ_STRICT_ALIGN)
    target_compile_options(fastlz_bundle PRIVATE -w)
    set_target_properties(fastlz_bundle PROPERTIES COMPILE_WARNING_AS_ERROR OFF POSITION_INDEPENDENT_CODE ON)
  endif()
endif()
