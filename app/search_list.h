// Lines of a homology search's list file: which of them name a structure.
#pragma once

// A line names a structure unless it has no token or starts with "#".
bool isListEntry(const char* line);
