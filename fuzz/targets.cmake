# SPDX-License-Identifier: Apache-2.0
# The targets with all that they need; the fuzzer and the ordinary tests are built from it.
set(FUZZ_TARGET_SOURCES)
foreach(
  source
  answers.cpp
  block.cpp
  block_arrays.cpp
  block_mounts.cpp
  chain.cpp
  commands.cpp
  image.cpp
  outside.cpp
  tables.cpp
  targets.cpp
  text_helpers.cpp)
  list(APPEND FUZZ_TARGET_SOURCES ${CMAKE_CURRENT_LIST_DIR}/${source})
endforeach()

# Calls that outside.cpp answers.
set(FUZZ_TARGET_LINK_OPTIONS)
foreach(call exit fclose fdopen mkdir mknod nanosleep pclose popen system unlink)
  list(APPEND FUZZ_TARGET_LINK_OPTIONS LINKER:--wrap=${call})
endforeach()
