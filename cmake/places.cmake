# SPDX-License-Identifier: Apache-2.0
# Where what is installed goes, relative to the prefix: GNUInstallDirs and what we have beside it.
include(GNUInstallDirs)

# The plug-ins stand apart from libraries that are linked.
set(DISKSCOUT_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/diskscout)
set(DISKSCOUT_PROGRAM_DIR ${CMAKE_INSTALL_LIBEXECDIR}/diskscout)
set(DISKSCOUT_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/diskscout)
set(DISKSCOUT_HOSTS_DIR ${CMAKE_INSTALL_DATADIR}/diskscout/hosts)
set(DISKSCOUT_EXAMPLES_DIR ${CMAKE_INSTALL_DOCDIR}/examples CACHE STRING "Where the samples are installed")
set(DISKSCOUT_PYTHON_DIR lib/python3/dist-packages CACHE STRING "Where the Python package is installed")

# From a program to its plug-ins, so that an installed tree may be moved as a whole.
file(RELATIVE_PATH DISKSCOUT_PLUGINS_FROM_PROGRAMS ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_LIBDIR}/diskscout)
