#include "fit/machine_constants.h"

#include <cstdio>

#include "fit/nls_errors.h"

float amach_(int64_t* which) {
    static const float values[8] = {1.1754944e-38f, 3.4028235e+38f, 1.1920929e-08f, 1.1920929e-07f,
                                    0.30103f,       1.7011e+38f,    1.70102e+38f,   -1.70102e+38f};
    int64_t n = *which;
    if (n >= 1 && n <= 8) return values[n - 1];
    e1psh("AMACH ");
    e1sti(1, n);
    e1mes(kNlsTerminal, 1, "The argument must be between 1 and 8 inclusive. N = %(I1)");
    e1pop("AMACH ");
    return values[5];
}

int64_t imach_(int64_t* which) {
    static const int64_t values[12] = {32, 4, 2, 31, 2147483647, 2, 24, -127, 127, 56, -127, 127};
    int64_t n = *which;
    if (n >= 1 && n <= 12) return values[n - 1];
    // The program cannot go on with a constant it does not know; there is no
    // exit outside main, so the caller gets 0 after the message.
    std::fprintf(stderr,
                 "*** TERMINAL ERROR 5 from IMACH.  The argument must be between 1 and 12 "
                 "inclusive. N = %lld\n",
                 static_cast<long long>(n));
    return 0;
}
