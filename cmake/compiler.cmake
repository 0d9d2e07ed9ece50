# Compiler settings that every target of the project shares, through heapgauge_compiler.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# It links a test program in a tenth of the time that the usual linker takes.
find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM AND HEAPGAUGE_TESTS)
  add_link_options(-fuse-ld=lld)
endif()

include(${CMAKE_CURRENT_LIST_DIR}/exact_arithmetic.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/hardening.cmake)

add_library(heapgauge_compiler INTERFACE)
target_include_directories(heapgauge_compiler INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(heapgauge_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # The treemap's pixels must come out bit-identical whatever instruction set computes them, and a
  # fused multiply-add rounds once where the plain product and sum round twice.
  -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 sees overlapping copies in "text" + std::string where there are none (GCC bug 105651).
  target_compile_options(heapgauge_compiler INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # What base/mutex.h says of locks; the other compiler ignores it.
  target_compile_options(heapgauge_compiler INTERFACE -Wthread-safety)
endif()
if(HEAPGAUGE_WARNINGS_AS_ERRORS)
  target_compile_options(heapgauge_compiler INTERFACE -Werror)
endif()
if(HEAPGAUGE_SANITIZE)
  # For the directory, which puts them before the options of a target: it may ask for others. Optimised checks run a
  # little faster and take twice as long to build, more than the tests gain.
  # Not so for threads: tests' stand-ins for functions of the C library run before that sanitizer is ready, and may call
  # nothing that it looks at.
  set(sanitized_level -O0)
  if(HEAPGAUGE_SANITIZE STREQUAL "thread")
    set(sanitized_level -O1)
  endif()
  add_compile_options(-fsanitize=${HEAPGAUGE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    ${sanitized_level} -g1)
  add_link_options(-fsanitize=${HEAPGAUGE_SANITIZE})
  # Some tests stand in for what a sanitizer stands in for, or run out of memory on purpose.
  add_compile_definitions(HEAPGAUGE_SANITIZED)
endif()
