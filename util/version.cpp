#include "util/version.h"

void writeVersionLines(FILE* out, const char* prefix) {
    std::fprintf(out, "%sDC Dipolar Coupling Calculation. %s\n", prefix, DC_DOC_ADDRESS);
    std::fprintf(out, "%sQuillon System %s Rev %s\n", prefix, DC_SUITE_VERSION, DC_REVISION);
}
