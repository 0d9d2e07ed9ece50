# Compiler settings that every target of the project shares, through heapgauge_compiler.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

include(${CMAKE_CURRENT_LIST_DIR}/exact_arithmetic.cmake)

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
if(HEAPGAUGE_WARNINGS_AS_ERRORS)
  target_compile_options(heapgauge_compiler INTERFACE -Werror)
endif()
if(HEAPGAUGE_SANITIZE)
  # For the directory, which puts them before the options of a target: it may ask for others.
  add_compile_options(-fsanitize=${HEAPGAUGE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
  add_link_options(-fsanitize=${HEAPGAUGE_SANITIZE})
endif()
