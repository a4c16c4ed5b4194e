# What every target of the house shares: language, warnings, sanitizers, output folder.

option(ORVO_TESTS "Build the tests" ON)
option(ORVO_BENCH "Build the benchmarks" OFF)
option(ORVO_FUZZ "Build the fuzzers, with clang alone" OFF)
option(ORVO_PRECOMPILE "Precompile the headers that many sources read" ON)
set(ORVO_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Modules, programs and tests stand side by side, as they do when installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

find_program(CCACHE ccache)
if(CCACHE)
  # Paths below the source folder count relatively, so that every checkout shares the cache. With
  # precompiled headers it has to be told that macros and times in them do not matter.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
                                  CCACHE_NOHASHDIR=1
                                  CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

# It links in a third of the time. MinGW's programs need MinGW's own linker.
find_program(ORVO_MOLD mold)
if(ORVO_MOLD AND NOT WIN32)
  add_link_options(-fuse-ld=mold)
endif()

add_library(orvo_options INTERFACE)
# g++ 12 takes the inlined concatenation of strings for overlapping copies (its bug 105651).
target_compile_options(orvo_options INTERFACE -Wall -Wextra -Wpedantic -Werror
                       $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                       $<$<CXX_COMPILER_ID:Clang>:-Wno-nested-anon-types>)
target_include_directories(orvo_options INTERFACE ${PROJECT_SOURCE_DIR})
if(NOT WIN32)
  # A module's inline statics must not keep it from being unloaded.
  target_compile_options(orvo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
endif()
if(ORVO_SANITIZE)
  # The vptr check reads run-time type information beside a vtable; the vtables of the interface
  # tables are plain arrays of functions and have none.
  target_compile_options(orvo_options INTERFACE -fsanitize=${ORVO_SANITIZE} -fno-sanitize=vptr
                                                -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orvo_options INTERFACE -fsanitize=${ORVO_SANITIZE})
endif()

# orvo_precompile(NAME header...): compiles the headers once; a target takes them by
# target_precompile_headers(... REUSE_FROM NAME). A source includes what it uses all the same;
# the presets windows and release, which precompile nothing, show where it does not.
function(orvo_precompile name)
  set(source ${PROJECT_BINARY_DIR}/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "")
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${source})
  target_link_libraries(${name} PRIVATE orvo_options)
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
  target_link_libraries(${name} PUBLIC orvo_options)
  if(ORVO_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM orvo_headers)
  endif()
endfunction()

# orvo_test(NAME [THREADS] source...): one GoogleTest program; every case is a test of its own in
# CTest. THREADS: it tests what threads share, so it also runs under the thread sanitizer (label
# `threads`, target `thread_tests`).
add_custom_target(thread_tests)
if(ORVO_TESTS AND ORVO_PRECOMPILE AND NOT WIN32)
  find_package(GTest REQUIRED)
  orvo_precompile(orvo_test_headers ${standard_headers} <gmock/gmock.h> <gtest/gtest.h>)
  # As programs are compiled.
  set_target_properties(orvo_test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(orvo_test_headers PRIVATE -fPIE)
  target_link_libraries(orvo_test_headers PRIVATE GTest::gmock)
endif()
function(orvo_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test THREADS "" "")
  add_executable(${name} ${test_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE orvo_options GTest::gmock_main)
  if(ORVO_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM orvo_test_headers)
  endif()
  set(labels)
  if(test_THREADS)
    set(labels LABELS threads)
    add_dependencies(thread_tests ${name})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120 ${labels})
endfunction()
