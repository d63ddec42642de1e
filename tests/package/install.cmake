# Installs the build into a directory and moves it to TREES/both; TREES/static is a copy as a build
# without the shared library would leave it. Variables: BUILD_DIR, TREES, SOURCE_DIR, GENERATOR,
# COMPILER.

file(REMOVE_RECURSE ${TREES})
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${TREES}/first
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${TREES}/first ${TREES}/both)
execute_process(COMMAND ${TREES}/both/bin/ovik-tsne --version COMMAND_ERROR_IS_FATAL ANY)
file(COPY ${TREES}/both/ DESTINATION ${TREES}/static)
file(GLOB_RECURSE of_shared ${TREES}/static/*/libovik.so* ${TREES}/static/*/ovik-shared-*.cmake)
list(LENGTH of_shared count)
if(NOT count EQUAL 5)
  message(FATAL_ERROR "Not the three names of the shared library and two CMake files: ${of_shared}")
endif()
file(REMOVE ${of_shared})

# What pkg-config says differs: that of such a build, configured alone.
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${TREES}/build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${COMPILER}
    -DBUILD_SHARED_LIBS=OFF -DOVIK_TESTS=OFF -DOVIK_TOOLS=OFF -DOVIK_BENCH=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE pc_file ${TREES}/static/*/ovik.pc)
file(COPY_FILE ${TREES}/build/ovik.pc ${pc_file})
file(REMOVE_RECURSE ${TREES}/build)
