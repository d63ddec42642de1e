# Makes what programs include as <ovik/...>: of each header in public_headers.txt a copy in the
# directory public/ovik of the build, and of no other. Defines ovik_public_headers, the list, and
# ovik_public_dir.

set(ovik_public_dir ${PROJECT_BINARY_DIR}/public)
set(ovik_header_list ${CMAKE_CURRENT_LIST_DIR}/public_headers.txt)
file(STRINGS ${ovik_header_list} ovik_public_headers REGEX "^[a-z]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ovik_header_list})

# What is public no longer goes.
file(GLOB_RECURSE copies RELATIVE ${ovik_public_dir}/ovik ${ovik_public_dir}/ovik/*)
foreach(copy ${copies})
  if(NOT copy IN_LIST ovik_public_headers)
    file(REMOVE ${ovik_public_dir}/ovik/${copy})
  endif()
endforeach()

# The copies include one another as <ovik/...> does, so that a file of the same name in the user's
# project cannot take the place of one of them.
foreach(header ${ovik_public_headers})
  file(READ ${PROJECT_SOURCE_DIR}/${header} text)
  string(REGEX REPLACE "(#include \")([a-z]+/)" "\\1ovik/\\2" text "${text}")
  file(CONFIGURE OUTPUT ${ovik_public_dir}/ovik/${header} CONTENT "${text}" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
endforeach()
