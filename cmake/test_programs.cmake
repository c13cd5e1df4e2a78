# SPDX-License-Identifier: Apache-2.0
# How the programs of GoogleTest are built: so that a change is soon tested. What they test has its own flags.
include(CheckLinkerFlag)

add_library(diskscout_test_options INTERFACE)
# Their assertions are long to optimise and run once.
target_compile_options(diskscout_test_options INTERFACE -O0 -g1)
target_compile_options(diskscout_test_options INTERFACE ${DISKSCOUT_FEWER_CHECKS})
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

# Each test in a process of its own, so that none has what another one left. Where starting a process costs more than
# most tests do, under the sanitizers and for gcov, a program runs whole, in four parts.
option(DISKSCOUT_TESTS_WHOLE "Run the programs of GoogleTest as a whole" OFF)
function(diskscout_discover_tests target)
  if(NOT DISKSCOUT_TESTS_WHOLE)
    gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
    return()
  endif()
  foreach(part RANGE 3)
    add_test(NAME ${target}-${part} COMMAND ${target} --gtest_brief=1)
    set_tests_properties(
      ${target}-${part} PROPERTIES ENVIRONMENT "GTEST_TOTAL_SHARDS=4;GTEST_SHARD_INDEX=${part}" TIMEOUT 600)
  endforeach()
endfunction()
