// Constants of the single-precision arithmetic the solver works in.
#pragma once

#include <cstdint>

// 1 smallest normalised float, 2 largest float, 3 epsilon / 10, 4 epsilon,
// 5 log10(2), 6..8 the large values standing for not-a-number, +infinity and
// -infinity. Any other argument is a TERMINAL error (code 1) under "AMACH ",
// and the not-a-number stand-in is returned.
float amach_(int64_t* which);

// 1..12: bits, characters and digits of an integer, the largest integer,
// float base, float and double mantissa digits and exponent ranges. Any
// other argument writes a message to standard error and gives 0.
int64_t imach_(int64_t* which);
