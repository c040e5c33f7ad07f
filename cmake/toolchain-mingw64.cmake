# 64-bit Windows from Debian's MinGW-w64: cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw64.cmake
#
# Libraries that are not part of the system come from the folder KIV_MINGW_DEPS (-D or environment) that windows/build-libraries.sh
# makes. ./run windows does all of it.
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
list(PREPEND CMAKE_PREFIX_PATH ${KIV_MINGW_DEPS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Never this machine's own libraries.
set(ENV{PKG_CONFIG_LIBDIR} "${KIV_MINGW_DEPS}/lib/pkgconfig")

set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -DWINVER=0x0A00")
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -DWINVER=0x0A00")
# The compiler's runtime goes inside: what is built runs on machines that have no MinGW.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
