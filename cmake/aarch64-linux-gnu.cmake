# SPDX-License-Identifier: Apache-2.0
# Builds for aarch64 with Debian's cross compiler; scripts/setup lays the rest of that machine into the sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-aarch64)
set(libraries ${sysroot}/usr/lib/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH ${sysroot} /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})

# The loader looks below the prefix of the cross compiler's own libraries.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu -E LD_LIBRARY_PATH=${libraries})
