#include "fit/bounded_lm.h"

#include <algorithm>
#include <cmath>

#include "fit/fd_jacobian.h"
#include "fit/lm_step.h"
#include "fit/machine_constants.h"
#include "fit/nls_errors.h"
#include "util/alloc.h"

namespace {

// Below this objective the scaled gradient is measured against the floor.
constexpr double kObjectiveFloor = 1.0e-19;

// Iteration state: the problem, its options and the scratch carved from the
// workspaces and one block of doubles.
struct Lm {
    const LsfProblem* p;
    const LsfOptions* o;
    float* ftrial;  // m
    float* xtrial;  // n
    int64_t* held;  // n: 0 free, 1 held at a bound this iteration
    int64_t* freeVar;
    double* block;
    int64_t blockSize;
    LmStepWork work;
    double* grad;    // n
    double* metric;  // n: trust-region scaling
    double* step;    // n
    double phi = 0.0;
    double radius = 0.0;
    float epsfcn = 0.0f;
    int64_t iter = 0, nfcn = 0, njac = 0, maxSteps = 0;
};

double objective(const Lm& s, const float* f) {
    double sum = 0.0;
    for (int64_t i = 0; i < s.p->m; i++) {
        double v = static_cast<double>(s.p->fscale[i]) * f[i];
        sum += v * v;
    }
    return 0.5 * sum;
}

void evaluate(Lm& s, float* x, float* f) {
    int64_t m = s.p->m, n = s.p->n;
    e1usr_("ON");
    s.p->fcn(&m, &n, x, f);
    e1usr_("OFF");
    s.nfcn++;
}

double typicalX(const Lm& s, int64_t j) {
    return std::fmax(std::fabs(s.p->x[j]), 1.0f / s.p->xscale[j]);
}

// Jacobian at x, gradient, normal matrix, the variables held at a bound and
// (with internal scaling) the column norms in the trust-region metric.
int linearise(Lm& s) {
    const LsfProblem& p = *s.p;
    int64_t m = p.m, n = p.n, ld = p.ldfjac;
    if (f2jac_(p.fcn, &m, &n, p.x, p.xscale, p.fvec, s.epsfcn, p.fjac, &ld, s.ftrial, p.xlb,
               p.xub) != 0) {
        return 1;
    }
    s.njac++;
    for (int64_t j = 0; j < n; j++) {
        const float* cj = p.fjac + j * ld;
        double g = 0.0, norm = 0.0;
        for (int64_t i = 0; i < m; i++) {
            double fs2 = static_cast<double>(p.fscale[i]) * p.fscale[i];
            g += fs2 * cj[i] * p.fvec[i];
            norm += fs2 * cj[i] * cj[i];
        }
        s.grad[j] = g;
        if (s.o->scaling == 1 && std::isfinite(norm)) {
            s.metric[j] = std::fmax(s.metric[j], std::sqrt(norm));
        }
        for (int64_t k = 0; k <= j; k++) {
            const float* ck = p.fjac + k * ld;
            double a = 0.0;
            for (int64_t i = 0; i < m; i++) {
                a += static_cast<double>(p.fscale[i]) * p.fscale[i] * cj[i] * ck[i];
            }
            s.work.normal[j * n + k] = s.work.normal[k * n + j] = a;
        }
        bool fixed = p.xlb[j] == p.xub[j];
        bool atLow = p.x[j] <= p.xlb[j] && s.grad[j] > 0.0;
        bool atHigh = p.x[j] >= p.xub[j] && s.grad[j] < 0.0;
        s.held[j] = (fixed || atLow || atHigh) ? 1 : 0;
        s.freeVar[j] = 1 - s.held[j];
    }
    return 0;
}

double scaledGradient(const Lm& s) {
    double worst = 0.0;
    for (int64_t j = 0; j < s.p->n; j++) {
        if (s.held[j]) continue;
        double v = std::fabs(s.grad[j]) * typicalX(s, j);
        if (!(v <= worst)) worst = v;  // a NaN gradient never converges
    }
    return worst / std::fmax(s.phi, kObjectiveFloor);
}

double scaledStep(const Lm& s) {
    double worst = 0.0;
    for (int64_t j = 0; j < s.p->n; j++)
        worst = std::fmax(worst, std::fabs(s.step[j]) / typicalX(s, j));
    return worst;
}

double metricLength(const Lm& s) {
    double sum = 0.0;
    for (int64_t j = 0; j < s.p->n; j++) sum += s.metric[j] * s.step[j] * s.metric[j] * s.step[j];
    return std::sqrt(sum);
}

// Reduction of the objective that the linear model predicts for s.step.
double predicted(const Lm& s) {
    const LsfProblem& p = *s.p;
    double model = 0.0, gs = 0.0;
    for (int64_t j = 0; j < p.n; j++) gs += s.grad[j] * s.step[j];
    for (int64_t i = 0; i < p.m; i++) {
        double js = 0.0;
        for (int64_t j = 0; j < p.n; j++)
            js += static_cast<double>(p.fjac[j * p.ldfjac + i]) * s.step[j];
        js *= p.fscale[i];
        model += js * js;
    }
    return -(gs + 0.5 * model);
}

// Length of the first scaled Cauchy step, capped at STEPMX.
double cauchyRadius(const Lm& s) {
    const LsfProblem& p = *s.p;
    double gd = 0.0, jd = 0.0;
    for (int64_t j = 0; j < p.n; j++) {
        if (!s.held[j]) gd += (s.grad[j] / s.metric[j]) * (s.grad[j] / s.metric[j]);
    }
    for (int64_t i = 0; i < p.m; i++) {
        double v = 0.0;
        for (int64_t j = 0; j < p.n; j++) {
            if (!s.held[j]) v += p.fjac[j * p.ldfjac + i] * s.grad[j] / (s.metric[j] * s.metric[j]);
        }
        v *= p.fscale[i];
        jd += v * v;
    }
    double len = jd > 0.0 ? std::pow(gd, 1.5) / jd : s.o->stepmx;
    return std::isfinite(len) && len > 0.0 ? std::fmin(len, s.o->stepmx) : s.o->stepmx;
}

// Trial point: the damped step projected onto the box; when the projection
// spoils the model, the step cut back to the box along its direction.
void trialStep(Lm& s) {
    const LsfProblem& p = *s.p;
    lmStep(p.n, s.freeVar, s.grad, s.metric, s.radius, &s.work, s.step);
    double* full = s.work.rhs;  // free again once lmStep returns
    double cut = 1.0;
    for (int64_t j = 0; j < p.n; j++) {
        full[j] = s.step[j];
        double to = p.x[j] + s.step[j];
        float clamped = static_cast<float>(
            std::clamp(to, static_cast<double>(p.xlb[j]), static_cast<double>(p.xub[j])));
        if (s.step[j] != 0.0 && clamped != to) {
            cut = std::fmin(cut, (clamped - p.x[j]) / s.step[j]);
        }
        s.xtrial[j] = clamped;
        s.step[j] = static_cast<double>(s.xtrial[j]) - p.x[j];
    }
    if (predicted(s) > 0.0) return;
    for (int64_t j = 0; j < p.n; j++) {
        float to = static_cast<float>(p.x[j] + std::fmax(cut, 0.0) * full[j]);
        s.xtrial[j] = std::clamp(to, p.xlb[j], p.xub[j]);
        s.step[j] = static_cast<double>(s.xtrial[j]) - p.x[j];
    }
}

struct StepOutcome {
    bool accepted = false;
    bool relative = false;
    bool falseConv = false;
    bool maxStep = false;
};

// Tries damped steps, shrinking the trust region, until one lowers the
// objective enough, the steps become too short, or evaluations run out.
StepOutcome findStep(Lm& s) {
    const LsfProblem& p = *s.p;
    StepOutcome out;
    while (true) {
        trialStep(s);
        double len = metricLength(s);
        double pred = predicted(s);
        if (len == 0.0 || !(pred > 0.0)) {
            out.accepted = true;  // nothing left to gain: a zero step
            for (int64_t j = 0; j < p.n; j++) s.step[j] = 0.0;
            return out;
        }
        evaluate(s, s.xtrial, s.ftrial);
        double phiTrial = objective(s, s.ftrial);
        double actual = s.phi - phiTrial;
        double ratio = std::isfinite(phiTrial) ? actual / pred : -1.0;
        if (ratio >= 1.0e-4) {
            out.accepted = true;
            out.relative = actual <= s.o->rftol * s.phi && pred <= s.o->rftol * s.phi;
            out.maxStep = len >= 0.99 * s.o->stepmx;
            if (ratio > 0.75) s.radius = std::fmin(std::fmax(s.radius, 2.0 * len), s.o->stepmx);
            if (ratio < 0.25) s.radius = 0.5 * len;
            for (int64_t j = 0; j < p.n; j++) p.x[j] = s.xtrial[j];
            for (int64_t i = 0; i < p.m; i++) p.fvec[i] = s.ftrial[i];
            s.phi = phiTrial;
            return out;
        }
        s.radius = 0.25 * len;
        if (scaledStep(s) <= s.o->falstl) {
            out.falseConv = true;
            return out;
        }
        if (s.nfcn >= s.o->maxfcn) return out;
    }
}

void terminate(int64_t code, const LsfOptions& o) {
    static const char* const texts[6] = {
        "RELATIVE FUNCTION CONVERGENCE - Both the scaled actual and predicted reductions in the "
        "function are less than or equal to the relative function convergence tolerance RFTOL = "
        "%(R1).",
        "FALSE CONVERGENCE - The iterates appear to be converging to a noncritical point.  "
        "Incorrect gradient information, a discontinuous function, or stopping tolerances being "
        "too tight may be the cause.",
        " Maximum number of iterations exceeded.",
        " Maximum number of function evaluations exceeded.",
        " Maximum number of Jacobian evaluations exceeded.",
        " Five consecutive steps of length STEPMX have been taken; either the function is "
        "unbounded below, or has a finite asymptote in some direction, or STEPMX is too small."};
    e1psh("U6LSF ");
    if (code == 1) e1str(1, o.rftol);
    e1mes(kNlsWarning, code, texts[code - 1]);
    e1pop("U6LSF ");
}

// The stopping test after an iteration: the stop code, or -1 to go on.
int stopCode(Lm& s, const StepOutcome& step) {
    if (s.phi <= s.o->aftol) return kLsfAbsoluteStop;
    if (scaledGradient(s) <= s.o->gradtl) return 0;
    if (s.iter == 0) return -1;
    if (step.accepted && scaledStep(s) <= s.o->steptl) return 0;
    int code = step.relative           ? 1
               : step.falseConv        ? 2
               : s.iter >= s.o->mxiter ? 3
               : s.nfcn >= s.o->maxfcn ? 4
               : s.njac >= s.o->maxjac ? 5
                                       : 0;
    if (code != 0) {
        terminate(code, *s.o);
        return code;
    }
    if (step.maxStep && ++s.maxSteps == 5) terminate(6, *s.o);
    return -1;
}

bool carve(Lm& s, const LsfProblem& p) {
    int64_t n = p.n;
    s.ftrial = p.wk;
    s.xtrial = p.wk + p.m;
    s.held = p.iwk;
    s.freeVar = p.iwk + n;
    s.blockSize = 2 * n * n + 5 * n;
    s.block = dFltMalloc64("nls", s.blockSize);
    if (!s.block) return false;
    s.work = {s.block, s.block + n * n, s.block + 2 * n * n};
    s.grad = s.block + 2 * n * n + 2 * n;
    s.metric = s.grad + n;
    s.step = s.metric + n;
    for (int64_t j = 0; j < n; j++) {
        s.metric[j] = p.xscale[j];
        s.step[j] = 0.0;
    }
    return true;
}

int iterate(Lm& s) {
    evaluate(s, s.p->x, s.p->fvec);
    s.phi = objective(s, s.p->fvec);
    if (linearise(s) != 0) return 1;
    int code = stopCode(s, StepOutcome{});
    if (code != -1) return code;
    s.radius = s.o->delta > 0.0f ? std::fmin(s.o->delta, s.o->stepmx) : cauchyRadius(s);
    while (!userStopFn()) {
        s.iter++;
        StepOutcome step = findStep(s);
        if (step.accepted && linearise(s) != 0) return 1;
        code = stopCode(s, step);
        if (code != -1) return code;
    }
    return 0;
}

}  // namespace

int boundedLM(const LsfProblem& p, const LsfOptions& o) {
    Lm s;
    s.p = &p;
    s.o = &o;
    if (!carve(s, p)) return 1;
    int64_t epsIndex = 4;
    s.epsfcn = std::fmax(amach_(&epsIndex),
                         static_cast<float>(std::pow(10.0, -static_cast<double>(o.fdigit))));
    int code = iterate(s);
    unAlloc64("nls", s.block, s.blockSize * static_cast<int64_t>(sizeof(double)));
    return code;
}
