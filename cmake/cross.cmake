# What the toolchain files of other processors share. Each sets, beside CMAKE_SYSTEM_PROCESSOR, Debian's
# name of the architecture, what its cross compiler begins with, and the program that emulates it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${ovik_compiler_prefix}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${ovik_compiler_prefix})
# Made by scripts/cross-root. Programs are those of the machine that builds.
cmake_path(SET CMAKE_SYSROOT NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/root/${ovik_architecture})
if(NOT EXISTS ${CMAKE_SYSROOT}/made-of)
  message(FATAL_ERROR "Libraries are missing: scripts/cross-root ${ovik_architecture} ${CMAKE_SYSROOT}")
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ovik_emulator} -L ${CMAKE_SYSROOT})
