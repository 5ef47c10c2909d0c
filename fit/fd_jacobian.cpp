#include "fit/fd_jacobian.h"

#include <cmath>

#include "fit/nls_errors.h"

namespace {

int checkArguments(int64_t m, int64_t n, const float* xscale, float epsfcn, int64_t ldfjac) {
    if (m <= 0) {
        e1sti(1, m);
        e1mes(kNlsTerminal, 1,
              "The number of functions must be positive while M = %(I1) is given.");
    } else if (n <= 0) {
        e1sti(1, n);
        e1mes(kNlsTerminal, 2,
              "The number of variables must be positive while N = %(I1) is given.");
    } else if (ldfjac < m) {
        e1sti(1, ldfjac);
        e1sti(2, m);
        e1mes(kNlsTerminal, 3,
              "The leading dimension of the Jacobian must be greater than or equal to the number "
              "of functions while LDFJAC = %(I1) and M = %(I2) are given.");
    } else if (!(epsfcn >= 0.0f && epsfcn <= 0.1f)) {
        e1str(1, epsfcn);
        e1mes(kNlsTerminal, 4,
              "The estimate for the relative noise in the function must be between 0.0 and 0.1 "
              "while EPSFCN = %(R1) is given.");
    } else {
        for (int64_t j = 0; j < n; j++) {
            if (xscale[j] > 0.0f) continue;
            e1sti(1, j + 1);
            e1str(1, xscale[j]);
            e1mes(kNlsTerminal, 5,
                  "The values for the diagonal scaling matrix must be positive while "
                  "XSCALE(%(I1)) = %(R1) is given.");
            return 1;
        }
        return 0;
    }
    return 1;
}

// Difference step for variable j, pointed away from a bound it would cross.
float probeStep(float xj, float scale, float root, const float* xlb, const float* xub, int64_t j) {
    float h = root * std::fmax(std::fabs(xj), 1.0f / scale);
    if (xj < 0.0f) h = -h;
    if (xlb && xub) {
        bool outside = xj + h > xub[j] || xj + h < xlb[j];
        bool otherInside = xj - h <= xub[j] && xj - h >= xlb[j];
        if (outside && otherInside) h = -h;
    }
    return h;
}

}  // namespace

int f2jac_(LsfResidualFn fcn, int64_t* m, int64_t* n, float* x, const float* xscale,
           const float* fx, float epsfcn, float* fjac, int64_t* ldfjac, float* ftmp,
           const float* xlb, const float* xub) {
    e1psh("F2JAC ");
    int bad = checkArguments(*m, *n, xscale, epsfcn, *ldfjac);
    float root = std::sqrt(epsfcn);
    for (int64_t j = 0; !bad && j < *n; j++) {
        float saved = x[j];
        float h = probeStep(saved, xscale[j], root, xlb, xub, j);
        x[j] = saved + h;
        h = x[j] - saved;  // the step the arithmetic actually took
        e1usr_("ON");
        fcn(m, n, x, ftmp);
        e1usr_("OFF");
        x[j] = saved;
        float* column = fjac + j * *ldfjac;
        for (int64_t i = 0; i < *m; i++) column[i] = h != 0.0f ? (ftmp[i] - fx[i]) / h : 0.0f;
    }
    e1pop("F2JAC ");
    return bad;
}
