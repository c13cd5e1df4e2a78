# SPDX-License-Identifier: Apache-2.0
# cpack -G RPM makes of a build, configured with -DCMAKE_INSTALL_PREFIX=/usr, the packages that Debian's are in debian/:
# of the same components, by the same install rules.
set(CPACK_GENERATOR RPM)
set(CPACK_PACKAGE_VENDOR "diskscout developers")
set(CPACK_PACKAGE_CONTACT "${CPACK_PACKAGE_VENDOR}")
set(CPACK_STRIP_FILES ON)
# What is installed names its place, which is that of the packages' user.
set(CPACK_SET_DESTDIR ON)
set(CPACK_RPM_PACKAGE_LICENSE Apache-2.0)
set(CPACK_RPM_PACKAGE_RELEASE 1)
set(CPACK_RPM_PACKAGE_GROUP System)
# No package is moved.
set(CPACK_PACKAGE_RELOCATABLE OFF)
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
# What debuggers find by it is not packaged.
set(CPACK_RPM_SPEC_MORE_DEFINE "%define _build_id_links none")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/rpm-names.cmake)
# What the system's own package brings belongs to it.
foreach(directory "" /man /man/man3 /man/man5 /man/man8 /bash-completion /bash-completion/completions /fish /fish/vendor_completions.d /zsh
                  /zsh/site-functions)
  list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${CMAKE_INSTALL_FULL_DATADIR}${directory})
endforeach()
set(libraries ${CMAKE_INSTALL_FULL_LIBDIR})
foreach(directory ${CMAKE_INSTALL_PREFIX}/lib ${libraries} ${libraries}/cmake ${libraries}/pkgconfig ${CMAKE_INSTALL_FULL_LIBEXECDIR})
  list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${directory})
endforeach()
get_filename_component(python_packages ${DISKSCOUT_PYTHON_DIR} DIRECTORY)
foreach(directory ${python_packages} ${DISKSCOUT_PYTHON_DIR})
  list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${CMAKE_INSTALL_PREFIX}/${directory})
endforeach()

# Packages are groups of components; a component alone is a group of one.
set(CPACK_RPM_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL plugins programs development simulator python)
set(CPACK_RPM_MAIN_COMPONENT runtime)

function(diskscout_rpm group name summary description)
  string(TOUPPER ${group} GROUP)
  set(CPACK_RPM_${GROUP}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_RPM_${GROUP}_PACKAGE_SUMMARY ${summary} PARENT_SCOPE)
  set(CPACK_COMPONENT_GROUP_${GROUP}_DESCRIPTION ${description} PARENT_SCOPE)
  foreach(component ${ARGN})
    string(TOUPPER ${component} COMPONENT)
    set(CPACK_COMPONENT_${COMPONENT}_GROUP ${group} PARENT_SCOPE)
  endforeach()
endfunction()

diskscout_rpm(
  runtime diskscout "Storage of a host as a server-management agent sees it"
  "Lists block devices, classic disks and partitions, and what is behind RAID controllers: the programs diskscout and
stcli, and the libraries that a management agent loads."
  plugins programs)
diskscout_rpm(
  devel diskscout-devel "Development files of diskscout"
  "Headers, files for pkg-config and CMake, manual pages and samples for agents that load the libraries of diskscout."
  development)
diskscout_rpm(
  sim diskscout-sim "Hosts and RAID controllers to try diskscout with"
  "A stand-in for the tool of a RAID controller, sample hosts, and the library that shows a captured host."
  simulator)
diskscout_rpm(
  python python3-diskscout "Python package of diskscout"
  "The lists of diskscout for Python: typed records in lists that give themselves back."
  python)
foreach(group DEVEL SIM PYTHON)
  set(CPACK_RPM_${group}_PACKAGE_REQUIRES "diskscout = ${PROJECT_VERSION}")
endforeach()
set(CPACK_RPM_PYTHON_PACKAGE_ARCHITECTURE noarch)

include(CPack)
