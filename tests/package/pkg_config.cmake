# Compiles a program and all installed headers with what pkg-config says, with warnings as errors, and
# runs it. Variables: COMPILER, PKG_CONFIG, OPTIONS (of pkg-config), TREE, WORK_DIR, CONSUMER.

file(GLOB_RECURSE pc_file ${TREE}/*/ovik.pc)
cmake_path(GET pc_file PARENT_PATH pc_dir)
cmake_path(GET pc_dir PARENT_PATH lib_dir)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env --modify PKG_CONFIG_PATH=path_list_prepend:${pc_dir}
    ${PKG_CONFIG} ${OPTIONS} --cflags --libs ovik
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")

file(GLOB_RECURSE headers RELATIVE ${TREE}/include ${TREE}/include/*.h)
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
list(JOIN headers "" includes)
file(REMOVE_RECURSE ${WORK_DIR})
file(WRITE ${WORK_DIR}/all_headers.cpp "${includes}")
execute_process(
  COMMAND ${COMPILER} -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Werror -fvisibility=hidden
    ${CONSUMER} ${WORK_DIR}/all_headers.cpp -o ${WORK_DIR}/consumer ${flags}
  COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${lib_dir} ${WORK_DIR}/consumer
  COMMAND_ERROR_IS_FATAL ANY)
