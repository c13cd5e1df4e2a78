# SPDX-License-Identifier: Apache-2.0
# The samples as their readers build them, but from this tree and with its warnings; beside the programs, whose names
# they must not take.
add_library(diskscout_headers INTERFACE)
add_library(diskscout::headers ALIAS diskscout_headers)
target_include_directories(diskscout_headers INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/block)
set(diskscout_PLUGIN_DIR ${CMAKE_BINARY_DIR})
add_subdirectory(samples)
foreach(name classic disks lists mirror tasks)
  set_target_properties(sample_${name} PROPERTIES OUTPUT_NAME diskscout-${name})
  target_link_libraries(sample_${name} PRIVATE diskscout_warnings diskscout_instrumentation)
  # Loaded at run time.
  add_dependencies(sample_${name} diskscout diskscout_block)
endforeach()

# Not what somebody has built of them there.
file(GLOB samples CONFIGURE_DEPENDS samples/*.c samples/*.cpp samples/*.py)
install(FILES ${samples} samples/CMakeLists.txt samples/Makefile DESTINATION ${DISKSCOUT_EXAMPLES_DIR}
        COMPONENT development)
