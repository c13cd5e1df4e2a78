# How the programs of GoogleTest are built: so that a change is soon tested. What they test has its own flags.
include(CheckLinkerFlag)

add_library(diskscout_test_options INTERFACE)
# Their assertions are long to optimise and run once.
target_compile_options(diskscout_test_options INTERFACE -O0 -g1)
# The fastest linker that is installed; the compiler's own optimiser at link time wants its own.
set(linkers mold lld)
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION)
  set(linkers)
endif()
foreach(linker ${linkers})
  check_linker_flag(CXX -fuse-ld=${linker} HAVE_linker_${linker})
  if(HAVE_linker_${linker})
    target_link_options(diskscout_test_options INTERFACE -fuse-ld=${linker})
    break()
  endif()
endforeach()

function(diskscout_test_program target)
  target_link_libraries(${target} PRIVATE diskscout_warnings diskscout_instrumentation diskscout_test_options)
  target_precompile_headers(
    ${target}
    PRIVATE
    <gmock/gmock.h>
    <filesystem>
    <fstream>
    <sstream>
    <string>
    <vector>)
endfunction()
