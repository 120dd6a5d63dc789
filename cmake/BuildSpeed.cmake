# What makes a build cheaper without changing what it makes: ccache in front
# of the compilers and mold as the linker, each used when the machine has it
# (the scripts install both). A launcher or linker chosen on the command line
# wins.

find_program(QXFB_CCACHE ccache)
if(QXFB_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # The test programs' precompiled headers are cached only with this
  # sloppiness; the base folder lets two checkouts share what is the same.
  set(launcher ${CMAKE_COMMAND} -E env
      "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
      "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" ${QXFB_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

find_program(QXFB_MOLD mold)
if(QXFB_MOLD AND NOT CMAKE_LINKER_TYPE AND NOT CMAKE_EXE_LINKER_FLAGS MATCHES "-fuse-ld")
  include(CheckLinkerFlag)
  check_linker_flag(CXX -fuse-ld=mold QXFB_HAS_MOLD)
  if(QXFB_HAS_MOLD)
    add_link_options(-fuse-ld=mold)
  endif()
endif()

# Test bodies are long runs of straight-line code that the optimiser spends
# most of a build on, for no gain in what they check: test programs (and the
# fuzz replays and seed writer) are compiled -Og with line tables only, enough
# for a debugger's stack and a sanitizer's report, whatever the build type.
# The library under test keeps the build type's flags.
set(QXFB_TEST_OPTIONS -Og -g1)

# Line tables are the debug information the tests, the sanitizers' reports
# and a debugger's stack need; full debug information costs a quarter more
# compile time on this code. QXFB_FULL_DEBUG_INFO=ON keeps the build type's -g.
option(QXFB_FULL_DEBUG_INFO "Full debug information (-g) instead of line tables (-g1)" OFF)
if(NOT QXFB_FULL_DEBUG_INFO)
  foreach(flags CMAKE_C_FLAGS_DEBUG CMAKE_CXX_FLAGS_DEBUG CMAKE_C_FLAGS_RELWITHDEBINFO CMAKE_CXX_FLAGS_RELWITHDEBINFO)
    string(REGEX REPLACE "(^| )-g( |$)" "\\1-g1\\2" ${flags} "${${flags}}")
  endforeach()
endif()
