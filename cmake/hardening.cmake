# Hardens optimised builds as Debian hardens its own, and keeps the place where they are made out of their bytes. Builds
# for debugging and for sanitizers, and unoptimised ones, are left alone: the sanitizers see more without it. With a
# generator of several configurations only those flags count that all of them share: its releases are left alone as well,
# unless CXXFLAGS optimises.
#
# Whoever sets a flag of the same kind in CXXFLAGS or LDFLAGS, as the tools of distributions do, has the say.

include(CheckCXXCompilerFlag)

# What the compiler and the linker are told from outside.
string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
set(compiler_flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}")
set(given_flags "${compiler_flags} ${CMAKE_EXE_LINKER_FLAGS}")

# The linker has levels as well, and -Wl,-O1 optimises no code.
separate_arguments(levels UNIX_COMMAND "${compiler_flags}")
list(FILTER levels INCLUDE REGEX "^-O")
list(POP_BACK levels level)
if(HEAPGAUGE_SANITIZE OR build_type STREQUAL "DEBUG" OR NOT level OR level STREQUAL "-O0")
  return()
endif()

# harden(KIND FLAG...): the flags, unless KIND, a regular expression, is found in those given or the compiler does not
# know them. What only some processors or releases have is left out without a word.
function(harden kind)
  if(given_flags MATCHES "${kind}")
    return()
  endif()
  foreach(flag IN LISTS ARGN)
    string(MAKE_C_IDENTIFIER "HEAPGAUGE_HAS${flag}" known)
    check_cxx_compiler_flag("${flag}" ${known})
    if(${known})
      add_compile_options(${flag})
    endif()
  endforeach()
endfunction()

harden("-f(no-)?stack-protector" -fstack-protector-strong)
harden("-f(no-)?stack-clash-protection" -fstack-clash-protection)
# Marked places to jump to: of x86, then of ARM.
harden("-fcf-protection" -fcf-protection)
harden("-mbranch-protection" -mbranch-protection=standard)
harden("-Wno-format" -Wformat -Wformat-security)
# Some compilers define it from the start, and to define it otherwise would be a warning. Tests, which are not optimised,
# undefine it. The third level also knows sizes that are computed; a C library that does not takes it for the second.
if(NOT given_flags MATCHES "_FORTIFY_SOURCE")
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
endif()
# Not -fPIC: whatever any other program might stand in for would not be inlined.
if(NOT given_flags MATCHES "-f(no-)?(pie|PIE|pic|PIC)|-(no-)?pie")
  add_compile_options(-fPIE)
  add_link_options(-pie)
endif()
if(NOT given_flags MATCHES "-z,?(norelro|lazy)")
  add_link_options(LINKER:-z,relro,-z,now)
endif()
add_link_options(LINKER:-z,noexecstack)

# Paths in what is built, from __FILE__ and for debuggers: relative to the sources. The last that fits counts, and the
# build directory may lie in the tree.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
