# What all targets have in common: language level, warnings, visibility, sanitizers, and where the results go.
#
#   build/<preset>/bin      programs
#   build/<preset>/lib      shared libraries
#   build/<preset>/lib/kiv  the data folder: registry file and simulated producer, as in an installation

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/archive)
set(KIV_DATA_DIRECTORY ${CMAKE_BINARY_DIR}/lib/kiv)
set(KIV_INSTALL_DATADIR ${CMAKE_INSTALL_LIBDIR}/kiv)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

find_program(KIV_CCACHE ccache)
if(KIV_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${KIV_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KIV_CCACHE})
endif()

find_package(Threads REQUIRED)

add_library(kiv_options INTERFACE)
target_compile_options(kiv_options INTERFACE -Wall -Wextra -Werror -Wpedantic -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
# With -O3 g++ 12 warns of overlapping copies inside std::string where there are none (GCC bug 105651).
target_compile_options(kiv_options INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>,$<COMPILE_LANGUAGE:CXX>>:-Wno-restrict>)
if(KIV_SANITIZE)
  target_compile_options(kiv_options INTERFACE -fsanitize=${KIV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(kiv_options INTERFACE -fsanitize=${KIV_SANITIZE})
endif()
target_link_libraries(kiv_options INTERFACE Threads::Threads)
if(NOT KIV_SANITIZE AND NOT WIN32)
  target_link_options(kiv_options INTERFACE -Wl,--no-undefined)
endif()

# kiv_library(name SOURCES a.cpp b.cpp [LINK libs...] [PRIVATE_LINK libs...])
# A room of the house: a static library whose public headers stand under <folder>/include, where there is one.
function(kiv_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/include)
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include)
  endif()
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE kiv_options ${ARG_PRIVATE_LINK})
endfunction()

# kiv_not_here(name reason): in the place of a test program that makes no sense on this system, a case that is skipped and says why.
function(kiv_not_here name reason)
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -E echo "skipped: ${reason}")
  set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "skipped: ")
endfunction()

# The programs whose cases carry the label "threads": all that the thread sanitizer's build needs.
add_custom_target(thread_tests)

# kiv_test(name SOURCES a.cpp [LINK libs...] [LABELS l...] [ENVIRONMENT K=V...] [TIMEOUT seconds] [ALONE])
# A GoogleTest program; each of its cases is a case of ctest. ALONE: no other case runs beside one of these.
include(GoogleTest)
function(kiv_test name)
  cmake_parse_arguments(ARG "ALONE" "TIMEOUT" "SOURCES;LINK;LABELS;ENVIRONMENT" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if("threads" IN_LIST ARG_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LINK} kiv_options GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT ${ARG_TIMEOUT} RUN_SERIAL ${ARG_ALONE})
  # Lists of several values do not survive the discovery's own property list: set when the cases are known.
  file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}_properties.cmake CONTENT
    "if(${name}_TESTS)\n  set_tests_properties(\${${name}_TESTS} PROPERTIES LABELS \"${ARG_LABELS}\" ENVIRONMENT \"${ARG_ENVIRONMENT}\")\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}_properties.cmake)
endfunction()
