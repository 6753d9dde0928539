# 64 bits: the same programs for the tests of a machine that cannot run programs of 32.
set(processor x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
