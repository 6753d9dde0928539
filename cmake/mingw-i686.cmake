# 32 bits: the plugin as it is given away.
set(processor i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# Doubles are doubles: the x87 unit would round its 80 bits to another neighbour now and then.
string(APPEND CMAKE_CXX_FLAGS_INIT " -msse2 -mfpmath=sse")
