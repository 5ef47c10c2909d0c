// One updating line on a terminal while a homology search runs: structures
// done of the total, offsets fitted per second and the time left. Nothing is
// written when standard error is not a terminal, so logs and captured
// output stay exactly as they are.
#pragma once

// Starts the line for a search over total structures (shown only when
// standard error is a terminal).
void progressBegin(int total);
// One more structure done; offsets is the number fitted so far.
void progressStructureDone(long offsets);
// Erases the line, so that another line can be written to standard error.
void progressClear();
// Erases the line for good.
void progressEnd();
