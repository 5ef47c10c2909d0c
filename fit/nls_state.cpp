#include "fit/nls_state.h"

namespace {

struct NlsState {
    NlsResidualFn residual = nullptr;
    int errorFlag = 0;
    int messageFlag = 1;
    int userStop = 0;
    int nest = 0;
    int64_t fitStatus = 0;
};

NlsState state;

}  // namespace

void resWrap(int64_t* m, int64_t* n, float* x, float* f) {
    if (state.residual) state.residual(static_cast<int>(*m), static_cast<int>(*n), x, f);
}

void setFitStatus(int64_t status) { state.fitStatus = status; }
int64_t getFitStatus() { return state.fitStatus; }

int nlsSilentErr() { return state.messageFlag == 0 ? 1 : 0; }

int setUserStopFlag(int flag) {
    int old = state.userStop;
    state.userStop = flag;
    return old;
}

int userStopFn() { return state.userStop; }
void errTally() { state.errorFlag = 1; }

NlsGlobals saveNlsGlobals() {
    return {state.residual, state.errorFlag, state.messageFlag, state.userStop};
}

void restoreNlsGlobals(const NlsGlobals& saved) {
    state.residual = saved.residual;
    state.errorFlag = saved.errorFlag;
    state.messageFlag = saved.messageFlag;
    state.userStop = saved.userStop;
}

void setNlsResidual(NlsResidualFn fn) { state.residual = fn; }
void setNlsMessageFlag(int on) { state.messageFlag = on; }
int getNlsErrorFlag() { return state.errorFlag; }
int enterNlsNest() { return ++state.nest; }
void leaveNlsNest() { state.nest--; }
void resetNlsState() { state = NlsState{}; }
