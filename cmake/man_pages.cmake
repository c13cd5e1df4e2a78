# SPDX-License-Identifier: Apache-2.0
# The manual pages, made of the pages in docs/ on the machine that builds, whatever it builds for. They belong to the
# default target wherever the converter is there; a build that has to have them says -DDISKSCOUT_MAN=ON and fails
# without it.
find_program(LOWDOWN lowdown NO_CMAKE_FIND_ROOT_PATH)
if(LOWDOWN)
  set(have_lowdown ON)
else()
  set(have_lowdown OFF)
endif()
option(DISKSCOUT_MAN "Build the manual pages (lowdown)" ${have_lowdown})
if(NOT DISKSCOUT_MAN)
  return()
endif()
if(NOT LOWDOWN)
  message(FATAL_ERROR "DISKSCOUT_MAN needs the program lowdown (Debian: lowdown)")
endif()

include(GNUInstallDirs)
# The date of the build; SOURCE_DATE_EPOCH makes it one of the sources.
string(TIMESTAMP man_date "%Y-%m-%d" UTC)

# diskscout_man_page(COMPONENT NAME SECTION PAGE): the page docs/PAGE.md, and what it is installed with.
function(diskscout_man_page component name section page)
  string(TOUPPER ${name} title)
  set(directory ${CMAKE_BINARY_DIR}/man/man${section})
  set(manual ${directory}/${name}.${section})
  set(source ${CMAKE_SOURCE_DIR}/docs/${page}.md)
  set(converter ${CMAKE_SOURCE_DIR}/cmake/man-page)
  file(MAKE_DIRECTORY ${directory})
  add_custom_command(
    OUTPUT ${manual}
    COMMAND ${converter} ${LOWDOWN} ${source} ${title} ${section} ${man_date} "diskscout ${PROJECT_VERSION}" > ${manual}
    DEPENDS ${source} ${converter} ${CMAKE_SOURCE_DIR}/cmake/man-table.awk
    COMMENT "Making the manual page ${name}(${section})"
    VERBATIM)
  set_property(GLOBAL APPEND PROPERTY DISKSCOUT_MAN_PAGES ${manual})
  install(
    FILES ${manual}
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
    COMPONENT ${component})
endfunction()

diskscout_man_page(programs diskscout 8 diskscout)
diskscout_man_page(programs stcli 8 stcli)
diskscout_man_page(programs stcli-hwraid 8 console)
diskscout_man_page(programs diskscout-limit 8 diskscout-limit)
diskscout_man_page(programs hardraid.cfg 5 hardraid.cfg)
diskscout_man_page(development diskscout 3 classic)
diskscout_man_page(development diskscout_raid 3 raid)
diskscout_man_page(development diskscout_block 3 block)
diskscout_man_page(simulator raidsim 8 raidsim)

get_property(man_pages GLOBAL PROPERTY DISKSCOUT_MAN_PAGES)
add_custom_target(man ALL DEPENDS ${man_pages})
