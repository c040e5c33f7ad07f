# What a build for Windows adds: names as they are usual there, and what static libraries need that their finders do not know of.

set(CMAKE_SHARED_LIBRARY_PREFIX "")
set(CMAKE_SHARED_MODULE_PREFIX "")
# Libraries stand beside the programs there, and the data folder beside the libraries.
set(KIV_DATA_DIRECTORY ${CMAKE_BINARY_DIR}/bin/kiv)
set(KIV_INSTALL_DATADIR ${CMAKE_INSTALL_BINDIR}/kiv)

# The tests may run on the machine that builds: Wine shows its files as this drive.
if(CMAKE_CROSSCOMPILING)
  set(KIV_DRIVE Z:)
endif()

find_package(ZLIB REQUIRED)
find_package(JPEG REQUIRED)
find_package(TIFF REQUIRED)
set_property(TARGET TIFF::TIFF APPEND PROPERTY INTERFACE_LINK_LIBRARIES JPEG::JPEG ZLIB::ZLIB)
find_library(KIV_OPENCV_CORE_ARCHIVE opencv_core REQUIRED)
set(OPENCV_CORE ${KIV_OPENCV_CORE_ARCHIVE} ${ZLIB_LIBRARIES})

# Every program and library is linked as a whole with the compiler's runtime inside (see the toolchain file); log4cpp alone is a DLL,
# so that whoever wants another version of it can put it there.
find_file(KIV_LOG4CPP_DLL NAMES log4cpp.dll PATHS ${KIV_MINGW_DEPS}/bin NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(KIV_LOG4CPP_DLL)
  file(COPY ${KIV_LOG4CPP_DLL} DESTINATION ${CMAKE_BINARY_DIR}/bin)
  install(FILES ${KIV_LOG4CPP_DLL} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
