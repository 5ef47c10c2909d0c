// Reading the alignment tensor options from the command line.
#pragma once

#include "dc/tensor.h"

// Reads every tensor option into the record, applies the predefined modes and
// fixed flags and clamps each start value into its limits. With -help present
// it only writes the usage text. Returns 1 after a wrong count of Saupe values.
int getDTensorParams(int argc, char** argv, DTensor* tensor);
// Reads a real, or sets *autoFlag when the value is "Auto" (any case).
// Returns 1 when the option was present with a value.
int fltArgDAuto(int argc, char** argv, const char* name, float* value, int* autoFlag);
void showDTensorUsage();
