# SPDX-License-Identifier: Apache-2.0
# What our targets are compiled with, as interface libraries: link what applies.
include(CheckCXXCompilerFlag)

# Boot bytes and texts are numbers from -128 on in the records, on machines too whose plain char has no sign.
add_compile_options(-fsigned-char)

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
  # For sources that are mostly somebody else's headers, and for tests: of their pointers AddressSanitizer tells
  # enough. To look at each before it is used takes as long as all of the rest of their compilation.
  set(of_pointers null,alignment,vptr,object-size,pointer-overflow,nonnull-attribute,returns-nonnull-attribute)
  set(DISKSCOUT_FEWER_CHECKS -fno-sanitize=${of_pointers})
endif()
# A source that reads a command line is nearly all CLI11.
function(diskscout_reads_command_line source)
  if(DISKSCOUT_SANITIZE)
    set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "${DISKSCOUT_FEWER_CHECKS};-O0")
  endif()
endfunction()
if(DISKSCOUT_COVERAGE)
  # Threads that ask at once count in the same places.
  target_compile_options(diskscout_instrumentation INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(diskscout_instrumentation INTERFACE --coverage)
  target_compile_definitions(diskscout_instrumentation INTERFACE DISKSCOUT_COVERAGE)
endif()

# The plug-in's own sources: it lives in a process that is not ours.
add_library(diskscout_hardening INTERFACE)
target_compile_options(diskscout_hardening INTERFACE -fno-exceptions -fno-rtti)
# What the machine or the compiler does not know is left out; the test library-file says what has to be there. A
# flag that is taken and then not used is not known either.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(
  flag
  -fstack-protector-strong
  -fstack-clash-protection
  -fcf-protection # x86
  -mbranch-protection=standard # aarch64
  -ftrivial-auto-var-init=zero)
  string(MAKE_C_IDENTIFIER "HAVE${flag}" have)
  check_cxx_compiler_flag(${flag} ${have})
  if(${have})
    target_compile_options(diskscout_hardening INTERFACE ${flag})
  endif()
endforeach()
if(NOT HAVE_ftrivial_auto_var_init_zero)
  # Some versions of clang ask for this word before they take the flag.
  set(auto_var_init -ftrivial-auto-var-init=zero
                    -enable-trivial-auto-var-init-zero-knowing-it-will-be-removed-from-clang)
  check_cxx_compiler_flag("${auto_var_init}" HAVE_auto_var_init_with_word)
  if(HAVE_auto_var_init_with_word)
    target_compile_options(diskscout_hardening INTERFACE ${auto_var_init})
  endif()
endif()
unset(CMAKE_REQUIRED_FLAGS)
if(NOT DISKSCOUT_SANITIZE AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  # The sanitizers replace the checked calls, and without optimisation they do not exist.
  target_compile_definitions(diskscout_hardening INTERFACE _FORTIFY_SOURCE=2)
endif()
