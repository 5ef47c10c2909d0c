// The process-wide workspaces the fits keep between calls: the order
// matrix's design, the nonlinear fit's and the superposition's.
#pragma once

// Releases all three (each is made again when next needed).
void releaseFitWorkspaces();
