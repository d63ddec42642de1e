# Tests mirrored_tests.cmake with a small tree. Takes WORK_DIR, which is made anew; CASE runs one case
# of it and is for this script itself.
include(${CMAKE_CURRENT_LIST_DIR}/mirrored_tests.cmake)
set(tree ${WORK_DIR})

if(CASE STREQUAL "program")
  ovik_require_tests_in_programs(${tree}/tests ${FILES})
elseif(CASE STREQUAL "mirror")
  ovik_require_mirrored_tests(${tree} "room;hall" "${FILES}")
else()
  file(REMOVE_RECURSE ${tree})
  foreach(file
      room/tested.cpp room/untested.cpp room/header.h room/loop.cpp room/kernels/loop.cpp
      hall/other.cpp hall/kernels/other.cpp
      outside/unit.cpp
      tests/room/tested_test.cpp tests/room/kernels/loop_test.cpp tests/cli/whole_test.cpp)
    file(WRITE ${tree}/${file} "")
  endforeach()

  # expect(CASE FILES EXPECTED): what the case says, as a regular expression; empty if it passes.
  function(expect case files expected)
    execute_process(
      COMMAND ${CMAKE_COMMAND} -DWORK_DIR=${WORK_DIR} -DCASE=${case} "-DFILES=${files}"
        -P ${CMAKE_CURRENT_FUNCTION_LIST_FILE}
      RESULT_VARIABLE status ERROR_VARIABLE said)
    # Lines of messages are broken and indented.
    string(REGEX REPLACE "[ \n]+" " " said "${said}")
    if(expected STREQUAL "")
      if(NOT status EQUAL 0 OR NOT said STREQUAL "")
        message(SEND_ERROR "${case} with ${files} should pass: ${said}")
      endif()
    elseif(status EQUAL 0 OR NOT said MATCHES "${expected}")
      message(SEND_ERROR "${case} with ${files} should say ${expected}: ${said}")
    endif()
  endfunction()

  set(all "room/tested_test.cpp;room/kernels/loop_test.cpp;cli/whole_test.cpp")
  expect(program "${all}" "")
  expect(program "room/tested_test.cpp;room/kernels/loop_test.cpp"
    "belong to no program of [^ ]*/tests/CMakeLists.txt: cli/whole_test.cpp Call Stack")
  set(without_test "room/untested.cpp;hall/other.cpp;hall/kernels/other.cpp")
  expect(mirror "${without_test}" "")
  expect(mirror "room/untested.cpp"
    "no test file of their name below tests/: hall/kernels/other.cpp hall/other.cpp Call Stack")
  expect(mirror "" "below tests/: room/untested.cpp hall/kernels/other.cpp hall/other.cpp Call Stack")
  expect(mirror "${without_test};room/tested.cpp" "ovik_tested_elsewhere lists [^:]*: room/tested.cpp Call Stack")
  # The choice among kernels has the test of the kernels.
  expect(mirror "${without_test};room/loop.cpp" "ovik_tested_elsewhere lists [^:]*: room/loop.cpp Call Stack")
  expect(mirror "${without_test};room/gone.cpp" "ovik_tested_elsewhere lists [^:]*: room/gone.cpp Call Stack")
endif()
