# SPDX-License-Identifier: Apache-2.0
# What an agent's developer installs: headers, and the files by which a build finds them and the plug-ins.
include(CMakePackageConfigHelpers)

set(headers ${CMAKE_SOURCE_DIR}/src/diskscout.h ${CMAKE_SOURCE_DIR}/src/define_command.h
            ${CMAKE_SOURCE_DIR}/src/diskscout_raid.h ${CMAKE_SOURCE_DIR}/block/diskscout_block.h)
install(FILES ${headers} DESTINATION ${DISKSCOUT_HEADER_DIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/diskscout)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/diskscout-config.cmake.in ${CMAKE_BINARY_DIR}/cmake/diskscout-config.cmake
  INSTALL_DESTINATION ${package_dir}
  PATH_VARS DISKSCOUT_HEADER_DIR DISKSCOUT_PLUGIN_DIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/diskscout-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cmake/diskscout-config.cmake ${CMAKE_BINARY_DIR}/cmake/diskscout-config-version.cmake
        DESTINATION ${package_dir} COMPONENT development)

# Programs keep what this file says of the plug-ins: plain paths, of the prefix that is installed to, which may be
# another one than that of the build.
install(
  CODE "
  set(name diskscout)
  set(version ${PROJECT_VERSION})
  set(includedir ${DISKSCOUT_HEADER_DIR})
  set(plugindir ${DISKSCOUT_PLUGIN_DIR})
  set(pkgconfigdir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
  if(prefix STREQUAL \"\") # that of the root
    set(prefix /)
  endif()
  foreach(directory includedir plugindir pkgconfigdir)
    get_filename_component(\${directory} \${\${directory}} ABSOLUTE BASE_DIR \"\${prefix}\")
  endforeach()
  configure_file(\"${CMAKE_CURRENT_LIST_DIR}/diskscout.pc.in\" \"${CMAKE_BINARY_DIR}/diskscout.pc\" @ONLY)
  # Of two of the same second the older one would be left there.
  file(REMOVE \"\$ENV{DESTDIR}\${pkgconfigdir}/diskscout.pc\")
  file(INSTALL DESTINATION \"\${pkgconfigdir}\" TYPE FILE FILES \"${CMAKE_BINARY_DIR}/diskscout.pc\")
" COMPONENT development)
