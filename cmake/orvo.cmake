# What every target of the house shares: language, warnings, sanitizers, output folder.

# A project that the house is a part of gets the component and its suite, and the rest for asking.
option(ORVO_PROGRAMS "Build the programs" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_WEB "Build the web host, too" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_EMBEDDED "Build the embedded directory (SQLite)" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_REDIS "Build what shares logins and sessions with other machines (Redis)"
       ${PROJECT_IS_TOP_LEVEL})
option(ORVO_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_INSTALL "Install all that is built" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_TESTS "Build the tests; they need all of the above" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_BENCH "Build the benchmarks" OFF)
option(ORVO_FUZZ "Build the fuzzers, with clang alone" OFF)
option(ORVO_WERROR "Take warnings for errors" ${PROJECT_IS_TOP_LEVEL})
option(ORVO_PRECOMPILE "Precompile the headers that many sources read" ON)
if(WIN32)
  set(ORVO_REDIS OFF)
endif()
if(ORVO_TESTS AND NOT (ORVO_PROGRAMS AND ORVO_WEB AND ORVO_EMBEDDED AND ORVO_EXAMPLES AND
                       (ORVO_REDIS OR WIN32)))
  message(FATAL_ERROR
    "ORVO_TESTS needs ORVO_PROGRAMS, ORVO_WEB, ORVO_EMBEDDED, ORVO_REDIS and ORVO_EXAMPLES")
endif()
if(ORVO_INSTALL AND NOT ORVO_PROGRAMS AND NOT WIN32)
  message(FATAL_ERROR "ORVO_INSTALL needs ORVO_PROGRAMS: orvo-register writes the modules' manifests")
endif()
if(ORVO_WEB AND NOT ORVO_PROGRAMS AND NOT PROJECT_IS_TOP_LEVEL)
  message(FATAL_ERROR "ORVO_WEB needs ORVO_PROGRAMS: the web host is one of them")
endif()
set(ORVO_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Modules, programs and tests stand side by side, as they do when installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  find_program(CCACHE ccache)
endif()
if(CCACHE)
  # Paths below the source folder count relatively, so that every checkout shares the cache. With
  # precompiled headers it has to be told that macros and times in them do not matter.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
                                  CCACHE_NOHASHDIR=1
                                  CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

# It links in a third of the time, but up to 2.3 a program whose thread-local data begin just before a
# page's end does not start (its issue 1151): its loader may not protect the page before. Therefore it
# links no release, and nothing for that protection. MinGW's programs need MinGW's own linker.
find_program(ORVO_MOLD mold)
if(ORVO_MOLD AND NOT WIN32 AND NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  add_link_options(-fuse-ld=mold -Wl,-z,norelro)
endif()

# What who uses a target of the house needs as well.
add_library(orvo_usage INTERFACE)
target_include_directories(orvo_usage INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/orvo/module>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(orvo_usage INTERFACE cxx_std_20)

# What holds for the house's own sources alone, and not for those of a project that it is a part of.
# g++ 12 takes the inlined concatenation of strings for overlapping copies (its bug 105651).
add_compile_options(-Wall -Wextra -Wpedantic $<$<BOOL:${ORVO_WERROR}>:-Werror>
                    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                    $<$<CXX_COMPILER_ID:Clang>:-Wno-nested-anon-types>)
if(NOT WIN32)
  # A module's inline statics must not keep it from being unloaded.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
endif()
if(ORVO_SANITIZE)
  # The vptr check reads run-time type information beside a vtable; the vtables of the interface
  # tables are plain arrays of functions and have none.
  add_compile_options(-fsanitize=${ORVO_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORVO_SANITIZE})
endif()

# orvo_precompile(NAME header...): compiles the headers once; a target takes them by
# target_precompile_headers(... REUSE_FROM NAME). A source includes what it uses all the same;
# the presets windows and release, which precompile nothing, show where it does not.
function(orvo_precompile name)
  set(source ${PROJECT_BINARY_DIR}/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "")
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${source})
  target_link_libraries(${name} PRIVATE orvo_usage)
  target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

# Not <filesystem>: it brings std::quoted, which a call of our own `quoted` may take instead.
set(standard_headers <algorithm> <array> <atomic> <chrono> <cstdint> <cstring> <functional> <map>
    <memory> <mutex> <new> <optional> <span> <stdexcept> <string> <string_view> <thread> <tuple>
    <utility> <vector>)
if(ORVO_PRECOMPILE)
  orvo_precompile(orvo_headers ${standard_headers})
endif()

# orvo_library(NAME source...): a static library of one room.
function(orvo_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC orvo_usage)
  if(ORVO_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM orvo_headers)
  endif()
endfunction()

# orvo_test(NAME [THREADS] source...): one GoogleTest program; every case is a test of its own in
# CTest. THREADS: it tests what threads share, so it also runs under the thread sanitizer (label
# `threads`, target `thread_tests`).
if(ORVO_TESTS)
  add_custom_target(thread_tests)
endif()
# The tests' own sources do without the checks of every pointer, which are a quarter of their
# compilation. In the product's sources these checks stay, and the address sanitizer knows null.
set(options_of_tests -fno-sanitize=null,alignment)
if(ORVO_TESTS AND ORVO_PRECOMPILE AND NOT WIN32)
  find_package(GTest REQUIRED)
  orvo_precompile(orvo_test_headers ${standard_headers} <gmock/gmock.h> <gtest/gtest.h>)
  # As programs are compiled.
  set_target_properties(orvo_test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(orvo_test_headers BEFORE PRIVATE -fPIE)
  target_compile_options(orvo_test_headers PRIVATE ${options_of_tests})
  target_link_libraries(orvo_test_headers PRIVATE GTest::gmock)
endif()
function(orvo_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test THREADS TIMEOUT "")
  if(NOT test_TIMEOUT)
    set(test_TIMEOUT 120)
  endif()
  add_executable(${name} ${test_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE orvo_usage GTest::gmock_main)
  target_compile_options(${name} PRIVATE ${options_of_tests})
  if(ORVO_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM orvo_test_headers)
  endif()
  set(labels)
  if(test_THREADS)
    set(labels LABELS threads)
    add_dependencies(thread_tests ${name})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT ${test_TIMEOUT} ${labels})
endfunction()
