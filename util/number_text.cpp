#include "util/number_text.h"

#include <climits>
#include <cstdlib>

float Atof2(const char* text) {
    if (!text) return 0.0f;
    char* end = nullptr;
    double value = std::strtod(text, &end);
    return end == text ? 0.0f : static_cast<float>(value);
}

int Atoi2(const char* text) {
    if (!text) return 0;
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}
