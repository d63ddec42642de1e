# Builds for 64-bit POWER processors, low bytes first: scripts/cross-root ppc64el build/root/ppc64el, then
# the preset ppc64el.
set(CMAKE_SYSTEM_PROCESSOR ppc64le)
set(ovik_architecture ppc64el)
set(ovik_compiler_prefix powerpc64le-linux-gnu)
set(ovik_emulator qemu-ppc64le-static)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
