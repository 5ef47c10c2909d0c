// DC's whole run: options, tables, the chosen mode and the clean-up.
#pragma once

// Returns the process exit status.
int dcMain(int argc, char** argv);
