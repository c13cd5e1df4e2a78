# The manual pages, made of the pages in docs/. They belong to the default target wherever the converter is
# there; a build that has to have them says -DDISKSCOUT_MAN=ON and fails without it.
find_program(LOWDOWN lowdown)
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

# The date of the build; SOURCE_DATE_EPOCH makes it one of the sources.
string(TIMESTAMP man_date "%Y-%m-%d" UTC)
set(man_directory ${CMAKE_BINARY_DIR}/man/man8)
file(MAKE_DIRECTORY ${man_directory})

function(diskscout_man_page name page)
  string(TOUPPER ${name} title)
  set(source ${CMAKE_SOURCE_DIR}/docs/${page}.md)
  set(converter ${CMAKE_SOURCE_DIR}/cmake/man-page)
  add_custom_command(
    OUTPUT ${man_directory}/${name}.8
    COMMAND ${converter} ${LOWDOWN} ${source} ${title} ${man_date} "diskscout ${PROJECT_VERSION}" >
            ${man_directory}/${name}.8
    DEPENDS ${source} ${converter}
    COMMENT "Making the manual page ${name}(8)"
    VERBATIM)
  set_property(GLOBAL APPEND PROPERTY DISKSCOUT_MAN_PAGES ${man_directory}/${name}.8)
endfunction()

diskscout_man_page(diskscout diskscout)
diskscout_man_page(stcli stcli)
diskscout_man_page(stcli-hwraid console)

get_property(man_pages GLOBAL PROPERTY DISKSCOUT_MAN_PAGES)
add_custom_target(man ALL DEPENDS ${man_pages})
