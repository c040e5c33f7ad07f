# 64-bit Windows from Debian's MinGW-w64: cmake -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake
#
# Libraries that are not part of the system come from the prefix KIV_MINGW_DEPS (-D or environment), built as static ones.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triple x86_64-w64-mingw32)
# The variant with POSIX threads: the other one has neither std::thread nor std::mutex.
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

if(NOT DEFINED KIV_MINGW_DEPS)
  set(KIV_MINGW_DEPS "$ENV{KIV_MINGW_DEPS}")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KIV_MINGW_DEPS)
set(CMAKE_FIND_ROOT_PATH ${KIV_MINGW_DEPS} /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00")
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0A00")
# The compiler's runtime goes inside: what is built runs on machines that have no MinGW.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()
