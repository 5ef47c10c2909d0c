// Process-wide state shared by the bounded least-squares solver and its entry
// nlsOpt: the stored residual routine, the solver-error flag, the message
// flag, the user-stop flag, the nesting counter and the fit status.
#pragma once

#include <cstdint>

// Residual routine as the program writes it: fills f[0..m-1] from x[0..n-1].
// Its result is ignored.
using NlsResidualFn = int (*)(int m, int n, float* x, float* f);
// Residual routine as the solver calls it, with the sizes by reference.
using LsfResidualFn = void (*)(int64_t* m, int64_t* n, float* x, float* f);

// The adapter the solver calls: passes m and n by value to the stored routine.
void resWrap(int64_t* m, int64_t* n, float* x, float* f);

void setFitStatus(int64_t status);
int64_t getFitStatus();

// 1 while solver messages are switched off, else 0.
int nlsSilentErr();
// Sets the user-stop flag and returns its previous value.
int setUserStopFlag(int flag);
// The user-stop flag; the solver stops when it is non-zero.
int userStopFn();
// Sets the solver-error flag (an error callback; nothing calls it yet).
void errTally();

// The four values nlsOpt saves around each call, so that a residual routine
// may itself call nlsOpt.
struct NlsGlobals {
    NlsResidualFn residual;
    int errorFlag;
    int messageFlag;
    int userStop;
};
NlsGlobals saveNlsGlobals();
void restoreNlsGlobals(const NlsGlobals& saved);
void setNlsResidual(NlsResidualFn fn);
void setNlsMessageFlag(int on);
int getNlsErrorFlag();
// Nesting depth of nlsOpt: enter returns the new depth.
int enterNlsNest();
void leaveNlsNest();

// Back to the start-up values (messages on, nothing stored), for tests.
void resetNlsState();
