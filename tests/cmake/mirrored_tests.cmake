# Which tests there have to be: every test file belongs to a program, and every source file has a test
# file in the same place below tests/. Both functions end the configuration with what is missing.

# Scripts have no configuration that could be repeated for new files.
set(ovik_look_again CONFIGURE_DEPENDS)
if(CMAKE_SCRIPT_MODE_FILE)
  set(ovik_look_again "")
endif()

# ovik_require_tests_in_programs(TESTS_DIR files...): every *_test.cpp below TESTS_DIR is among the
# files, which are relative to it.
function(ovik_require_tests_in_programs tests_dir)
  file(GLOB_RECURSE missing ${ovik_look_again} RELATIVE ${tests_dir} ${tests_dir}/*_test.cpp)
  list(REMOVE_ITEM missing ${ARGN})
  if(missing)
    list(JOIN missing "\n  " missing)
    message(FATAL_ERROR "These tests belong to no program of ${tests_dir}/CMakeLists.txt:\n  ${missing}")
  endif()
endfunction()

# ovik_require_mirrored_tests(SOURCE_DIR ROOMS EXCEPTED): for each source of the rooms and of their
# kernels/, room/name.cpp, there is tests/room/name_test.cpp, unless it is among those excepted. These
# have to be sources without such a test. A source that has one of its name in kernels/ chooses among
# the instruction sets of that one and is called by its test.
function(ovik_require_mirrored_tests source_dir rooms excepted)
  set(untested "")
  foreach(room ${rooms})
    file(GLOB sources ${ovik_look_again} RELATIVE ${source_dir}
      ${source_dir}/${room}/*.cpp ${source_dir}/${room}/kernels/*.cpp)
    foreach(source ${sources})
      set(tested ${source})
      string(REGEX REPLACE "^([^/]+)/([^/]+)$" "\\1/kernels/\\2" kernel ${source})
      if(EXISTS ${source_dir}/${kernel})
        set(tested ${kernel})
      endif()
      string(REGEX REPLACE "[.]cpp$" "_test.cpp" test tests/${tested})
      if(NOT EXISTS ${source_dir}/${test})
        list(APPEND untested ${source})
      endif()
    endforeach()
  endforeach()
  set(superfluous ${excepted})
  list(REMOVE_ITEM superfluous ${untested})
  list(REMOVE_ITEM untested ${excepted})
  if(untested)
    list(JOIN untested "\n  " untested)
    message(FATAL_ERROR "These sources have no test file of their name below tests/:\n  ${untested}")
  endif()
  if(superfluous)
    list(JOIN superfluous "\n  " superfluous)
    message(FATAL_ERROR
      "ovik_tested_elsewhere lists what is no source, or has a test of its name:\n  ${superfluous}")
  endif()
endfunction()
