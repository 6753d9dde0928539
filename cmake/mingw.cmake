# Cross-builds Windows programs; what is built runs under Wine. Included by the toolchain file of each
# width, which has set the processor.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_C_COMPILER ${processor}-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER ${processor}-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER ${processor}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${processor}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)
# Nothing but system DLLs is needed on the target machine.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
