// Error handler of the least-squares solver family: a stack of routine names,
// values registered for the placeholders of the next message, and typed,
// numbered messages. Every message sets the fit status to its code; it is
// printed on standard error only when its type's print level is at least 1
// and solver messages are switched on (nlsSilentErr).
#pragma once

#include <cstdint>

enum NlsMessageType {
    kNlsNote = 1,
    kNlsAlert = 2,
    kNlsWarning = 3,
    kNlsFatal = 4,
    kNlsTerminal = 5,
    kNlsWarningFixed = 6,
    kNlsFatalFixed = 7,
};

// Routine names are pushed on entry and popped, with the same name, on exit.
void e1psh(const char* name);
void e1pop(const char* name);

// Values for the placeholders %(I1..3), %(R1..2) and %(L1..2) of the next
// message; index is 1-based.
void e1sti(int index, int64_t value);
void e1str(int index, float value);
void e1stl(int index, const char* text);

// Issues a message of the given type and code under the routine on top of
// the stack (or "USER" while the user's residual routine runs).
void e1mes(int type, int64_t code, const char* text);

// "ON" before the user's residual routine is called, "OFF" afterwards.
void e1usr_(const char* onOff);

// Type of the most serious message since the outermost routine was pushed
// (0 for none): FATAL or TERMINAL means an error is pending.
int n1rty();

// Print level of a message type (1 prints); returns the previous level.
int setNlsPrintLevel(int type, int level);

// Empties the stack, forgets pending errors and restores the print levels.
void resetNlsErrors();
