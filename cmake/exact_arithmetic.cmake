# The treemap's pixels must come out bit-identical whatever processor computes them. Flags that let the compiler reorder
# sums, divide by reciprocals, fuse or forget what is no number stop the build here, and those that the compiler tells of
# also in app/map/exact_arithmetic.h, wherever they come from. Runs as a script of its own, too.

cmake_policy(VERSION 3.25)

set(inexact_flags
  -ffast-math -Ofast -ffp-model=fast -funsafe-math-optimizations
  -fassociative-math -freciprocal-math -mrecip -ffinite-math-only -fno-honor-nans -fno-honor-infinities
  -fno-signed-zeros -fno-trapping-math -fapprox-func -fcx-limited-range -fcx-fortran-rules
  -fsingle-precision-constant -fexcess-precision=fast -mfpmath=387 -ffp-contract=fast -ffp-contract=on)

get_cmake_property(variables VARIABLES)
list(FILTER variables INCLUDE REGEX "^CMAKE_CXX_FLAGS($|_)")
foreach(variable IN LISTS variables)
  separate_arguments(flags UNIX_COMMAND "${${variable}}")
  foreach(flag IN LISTS flags)
    string(REGEX REPLACE "^(-mrecip)=.*" "\\1" name "${flag}")
    if(name IN_LIST inexact_flags)
      message(FATAL_ERROR "${variable} has ${flag}: the treemap's arithmetic must be exact, build without it.")
    endif()
  endforeach()
endforeach()
