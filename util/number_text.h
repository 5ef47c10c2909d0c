// Tolerant number conversion for fixed-column fields.
#pragma once

// The real number at the start of text (leading blanks skipped); 0 when
// the text holds no number.
float Atof2(const char* text);
// The same for a decimal integer.
int Atoi2(const char* text);
