add_library(vornic_warnings INTERFACE)
add_library(vornic::warnings ALIAS vornic_warnings)
target_compile_options(vornic_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wcast-align
  -Wsuggest-override -Wimplicit-fallthrough -Wswitch-enum)
