# What every target is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
# Assertions stay on in all builds: what only our own code can do wrong must never pass unseen.
string(REPLACE "-DNDEBUG" "" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

set(IORDER_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
option(IORDER_FUZZ "Build the fuzzers, and all that they link with an eye on what it runs through; clang only")

find_program(IORDER_CCACHE ccache)
if(IORDER_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${IORDER_CCACHE}")
endif()
find_program(IORDER_MOLD mold)
if(IORDER_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(date REQUIRED)
find_package(Boost REQUIRED COMPONENTS context)
find_package(GTest REQUIRED)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(ZSTD REQUIRED IMPORTED_TARGET libzstd)
pkg_check_modules(ZLIB REQUIRED IMPORTED_TARGET zlib)

add_library(iorder_options INTERFACE)
target_include_directories(iorder_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(iorder_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # One product and one sum are two roundings, on every machine.
  -ffp-contract=off
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  # g++ 12 sees overlaps in joined strings that can't be (its bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_compile_definitions(iorder_options INTERFACE RAPIDJSON_HAS_STDSTRING=1)
if(IORDER_SANITIZE)
  target_compile_options(iorder_options INTERFACE -fsanitize=${IORDER_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all
    # In the sanitizers' own code g++ loses sight of what is set.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(iorder_options INTERFACE -fsanitize=${IORDER_SANITIZE})
endif()

if(IORDER_FUZZ)
  # Fibers have stacks of their own: how deep one lies says nothing.
  target_compile_options(iorder_options INTERFACE -fsanitize=fuzzer-no-link -fno-sanitize-coverage=stack-depth
    -fsanitize-ignorelist=${CMAKE_SOURCE_DIR}/fuzz/library-faults.txt)
endif()

# iorder_library(NAME SOURCES ... LINK ...): one floor.
function(iorder_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC iorder_options ${ARG_LINK})
endfunction()

# iorder_test(NAME SOURCES ... LINK ...): one unit test program.
function(iorder_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE iorder_options ${ARG_LINK} GTest::gtest_main GTest::gmock)
  # A test's own code isn't what is fast or slow: not optimised, it builds in half the time.
  target_compile_options(${name} PRIVATE -O0)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()
