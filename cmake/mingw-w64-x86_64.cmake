# Cross build for 64-bit Windows with Debian's mingw-w64 (posix threads variant). The GCC runtime
# and the C++ library are linked statically, so that the component imports Windows' own DLLs only
# and a host needs nothing else beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VANTO_MINGW_TRIPLE x86_64-w64-mingw32)
find_program(CMAKE_C_COMPILER NAMES ${VANTO_MINGW_TRIPLE}-gcc-posix REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${VANTO_MINGW_TRIPLE}-g++-posix REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${VANTO_MINGW_TRIPLE}-windres REQUIRED)
find_program(CMAKE_OBJDUMP NAMES ${VANTO_MINGW_TRIPLE}-objdump REQUIRED)

# Only the cross toolchain's own headers and libraries; host programs come from the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/${VANTO_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(VANTO_MINGW_STATIC_RUNTIME "-static -static-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${VANTO_MINGW_STATIC_RUNTIME}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${VANTO_MINGW_STATIC_RUNTIME}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${VANTO_MINGW_STATIC_RUNTIME}")
