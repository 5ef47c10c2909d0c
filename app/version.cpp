#include "app/version.h"

#include <cstdio>

void showVersion(const char* prefix) {
    std::printf("%sDC Dipolar Coupling Calculation. %s\n", prefix, DC_DOC_ADDRESS);
    std::printf("%sQuillon System %s Rev %s\n", prefix, DC_SUITE_VERSION, DC_REVISION);
}
