# What our targets are compiled with, as interface libraries: link what applies.

# Every C and C++ source of ours.
add_library(diskscout_warnings INTERFACE)
target_compile_options(
  diskscout_warnings
  INTERFACE -Wall -Wextra -Wshadow -Wcast-qual -Wformat=2 -Wundef -Wpointer-arith
            $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual>)

# Everything but what is loaded into programs that are not ours and not instrumented.
add_library(diskscout_instrumentation INTERFACE)
if(DISKSCOUT_SANITIZE)
  set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(diskscout_instrumentation INTERFACE ${sanitize})
  target_link_options(diskscout_instrumentation INTERFACE ${sanitize})
endif()
if(DISKSCOUT_COVERAGE)
  target_compile_options(diskscout_instrumentation INTERFACE --coverage)
  target_link_options(diskscout_instrumentation INTERFACE --coverage)
endif()

# The plug-in's own sources: it lives in a process that is not ours.
add_library(diskscout_hardening INTERFACE)
target_compile_options(
  diskscout_hardening INTERFACE -fno-exceptions -fno-rtti -fstack-protector-strong -fstack-clash-protection
                                -fcf-protection -ftrivial-auto-var-init=zero)
if(NOT DISKSCOUT_SANITIZE AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  # The sanitizers replace the checked calls, and without optimisation they do not exist.
  target_compile_definitions(diskscout_hardening INTERFACE _FORTIFY_SOURCE=2)
endif()
