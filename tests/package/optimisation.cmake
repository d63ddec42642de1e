# Configures a project that takes this one in, by add_subdirectory and by FetchContent, and looks at how
# the library would be compiled. Variables: SOURCE_DIR, OVIK_DIR, WORK_DIR, GENERATOR, COMPILER.

# ovik_check(WAY OPTIMISED OPTION...): whether every source of the library is compiled with -O3.
function(ovik_check way optimised)
  file(REMOVE_RECURSE ${WORK_DIR})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=CXXFLAGS --unset=CMAKE_BUILD_TYPE
      ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR} -G ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER} -DOVIK_DIR=${OVIK_DIR} -DWAY=${way} ${ARGN}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(STRINGS ${WORK_DIR}/compile_commands.json commands REGEX "\"command\": .*/stats/fit[.]cpp")
  list(LENGTH commands count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "stats/fit.cpp is compiled ${count} times")
  endif()
  file(STRINGS ${WORK_DIR}/compile_commands.json others REGEX "\"command\": ")
  list(FILTER others EXCLUDE REGEX " -O3 ")
  list(FILTER others EXCLUDE REGEX "/consumer[.]cpp")
  list(LENGTH others not_optimised)
  if(optimised AND NOT not_optimised EQUAL 0)
    message(FATAL_ERROR "${way} ${ARGN}: not optimised:\n${others}")
  elseif(NOT optimised AND commands MATCHES " -O3 ")
    message(FATAL_ERROR "${way} ${ARGN}: optimised against the user's will:\n${commands}")
  endif()
endfunction()

ovik_check(add_subdirectory ON)
ovik_check(FetchContent ON)
ovik_check(add_subdirectory ON -DCMAKE_CXX_FLAGS=-g)
ovik_check(add_subdirectory ON -DCMAKE_BUILD_TYPE=Release)
ovik_check(add_subdirectory OFF -DCMAKE_BUILD_TYPE=Debug)
ovik_check(add_subdirectory OFF -DCMAKE_CXX_FLAGS=-O0)
