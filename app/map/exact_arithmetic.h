#pragma once

// Stops the build where the compiler may change what floating-point arithmetic gives. The map is
// bit-identical on every machine because each operation is rounded once, as IEEE 754 says, in the
// order in which it is written. Contraction, which no macro tells of, is turned off and looked for
// by cmake/.

#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    defined(__NO_SIGNED_ZEROS__) || defined(__NO_TRAPPING_MATH__) ||                           \
    (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ != 0)
#error \
    "The treemap's arithmetic must be exact: build without -ffast-math and all that is part of it."
#endif

#if defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ != 0
#error \
    "The treemap's arithmetic must be exact: build without wider registers, such as -mfpmath=387."
#endif

static_assert(0.1 != 0.1F, "The treemap's arithmetic must be exact: constants are not doubles.");
