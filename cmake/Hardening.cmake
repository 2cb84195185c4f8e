# What the compiler and the linker have against the abuse of a fault in memory: in every build but those with a
# sanitizer, which watch over the same memory in their own way. tests/packaging/tst_hardening.py reads the result.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

function(vornic_harden_compiler flag)
  string(MAKE_C_IDENTIFIER "VORNIC_HAS${flag}" known)
  check_cxx_compiler_flag("${flag}" ${known})
  if(${known})
    add_compile_options("${flag}")
  endif()
endfunction()

function(vornic_harden_linker flag)
  string(MAKE_C_IDENTIFIER "VORNIC_LINKS${flag}" known)
  check_linker_flag(CXX "${flag}" ${known})
  if(${known})
    add_link_options("${flag}")
  endif()
endfunction()

if(VORNIC_SANITIZE)
  return()
endif()

vornic_harden_compiler(-fstack-protector-strong)
vornic_harden_compiler(-fstack-clash-protection)
vornic_harden_compiler(-fcf-protection=full)            # x86
vornic_harden_compiler(-mbranch-protection=standard)    # ARM
# Needs the optimizer, and says so without it. Whatever level the compiler or its environment brings gives way.
add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=3>)

vornic_harden_linker(-Wl,-z,relro)
vornic_harden_linker(-Wl,-z,now)
vornic_harden_linker(-Wl,-z,noexecstack)

check_pie_supported(LANGUAGES C CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
