# Builds for 64-bit Arm processors: scripts/cross-root arm64 build/root/arm64, then the preset aarch64.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ovik_architecture arm64)
set(ovik_compiler_prefix aarch64-linux-gnu)
set(ovik_emulator qemu-aarch64-static)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
