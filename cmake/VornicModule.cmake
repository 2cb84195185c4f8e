# vornic_module(<room> SOURCES a.cpp... HEADERS a.h... [PUBLIC deps] [PRIVATE deps])
#
# One static library per room, which is a folder under src/: the room capture/jpeg is the target
# vornic_capture_jpeg and the alias vornic::capture::jpeg. Each header must compile on its own. Where a source has the
# same name, compiling that source shows it, because it includes the header first (clang-format puts it there); the other
# headers are in a file set that all_verify_interface_header_sets compiles.
function(vornic_module name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE")
  string(REPLACE "/" "_" target "vornic_${name}")
  string(REPLACE "/" "::" alias "vornic::${name}")
  add_library(${target} STATIC ${arg_SOURCES})
  add_library(${alias} ALIAS ${target})
  set(alone)
  foreach(header IN LISTS arg_HEADERS)
    string(REGEX REPLACE "h$" "cpp" source "${header}")
    if(NOT source IN_LIST arg_SOURCES)
      list(APPEND alone "${header}")
    endif()
  endforeach()
  if(alone)
    list(REMOVE_ITEM arg_HEADERS ${alone})
  endif()
  target_sources(${target} PUBLIC
    FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${arg_HEADERS}
    FILE_SET alone TYPE HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${alone})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE} vornic::warnings)
  set_target_properties(${target} PROPERTIES AUTOMOC ON VERIFY_INTERFACE_HEADER_SETS ON
    INTERFACE_HEADER_SETS_TO_VERIFY alone)
endfunction()

# Two hundred programs for tests are linked, which takes this linker a fifth of the time; it comes with the usual one. What
# is installed, and what is looked at with a sanitizer, is linked as everywhere.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=gold VORNIC_LINKS_WITH_GOLD)

function(vornic_link_quickly target)
  if(VORNIC_LINKS_WITH_GOLD AND NOT VORNIC_SANITIZE)
    target_link_options(${target} PRIVATE -fuse-ld=gold)
  endif()
endfunction()

# vornic_test(<tst_name.cpp> LIBS ... [LABELS ...] [TIMEOUT seconds])
#
# One GoogleTest executable a file, known to CTest as one test. Exit status 77 means skipped. Tests run side by side; one
# that encodes movies keeps all processors busy by itself, and so counts as two.
function(vornic_test source)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "LIBS;LABELS")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  if(VORNIC_SANITIZE)
    math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 6")
  endif()
  get_filename_component(name "${source}" NAME_WE)
  add_executable(${name} ${source})
  # What is measured is in the libraries; a test's own source takes a quarter less time to compile so.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
  target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gmock GTest::gtest GTest::gtest_main vornic::warnings)
  target_precompile_headers(${name} REUSE_FROM vornic_test_headers)
  # Where a library defines a macro that the precompiled headers were compiled without, the plain headers are used.
  set_target_properties(${name} PROPERTIES PCH_WARN_INVALID OFF)
  vornic_link_quickly(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}" SKIP_RETURN_CODE 77)
  if("media" IN_LIST arg_LABELS)
    set_tests_properties(${name} PROPERTIES PROCESSORS 2)
  endif()
endfunction()

# vornic_fuzzer(<fuzz_name.cpp> TURN first|second LIBS ...)
#
# A program that is fed random inputs: by hand "fuzz_name [inputs [seed]]", and by CTest 100,000, or fewer where a
# sanitizer makes them slow. There it gives way to the other tests, most of which wait for something, but not so far
# that a run ends with fuzzers alone. It keeps its files in memory: what is fed to it is bytes, and a disk would make it
# and the tests beside it wait. Those of one turn follow each other; both turns last about as long.
function(vornic_fuzzer source)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TURN" "LIBS")
  set(inputs 100000)
  if(VORNIC_SANITIZE)
    set(inputs 3000)
  endif()
  get_filename_component(name "${source}" NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} vornic::test_support vornic::warnings)
  vornic_link_quickly(${name})
  add_test(NAME ${name} COMMAND nice -n 10 $<TARGET_FILE:${name}> ${inputs})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT 1500 LABELS unit COST 500 RESOURCE_LOCK ${arg_TURN}_fuzzer ENVIRONMENT TMPDIR=/dev/shm)
endfunction()
