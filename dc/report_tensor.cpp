#include "dc/report_tensor.h"

#include <cmath>

#include "dc/dtab.h"
#include "dc/euler.h"
#include "dc/statistics.h"
#include "pdb/matrix4.h"

namespace {

const char kAxisLettersUC[] = "XYZABC";

float wrapReference(float degrees) {
    while (degrees < -180.0f) degrees += 360.0f;
    while (degrees > 180.0f) degrees -= 360.0f;
    return degrees;
}

// The rotation of Euler solution (psi, theta, phi), as a 4x4 matrix.
void solutionRotation(float m[16], float psi, float theta, float phi) {
    m4x4SetIdentity(m);
    m4x4AppendRotation(m, psi, theta, phi);
}

void toRows(const float m[16], float r[4][4]) {
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) r[i][j] = m[4 * i + j];
    }
}

void writeReference(FILE* out, const DTensor& t) {
    std::fprintf(out, "DATA EULER_REFERENCE % 7.2f % 7.2f % 7.2f\n", wrapReference(t.rxRef),
                 wrapReference(t.ryRef), wrapReference(t.rzRef));
    std::fprintf(out, "DATA EULER_RELATIVE  % 7.2f % 7.2f % 7.2f\n", wrapReference(t.refSpare[0]),
                 wrapReference(t.refSpare[1]), wrapReference(t.refSpare[2]));
    std::fprintf(out, "\n");
}

// The first solution turned 180 degrees about one axis, and its solutions.
void writeMirror(FILE* out, const DTensor& t, int axis) {
    float m[16], turn[16];
    solutionRotation(m, t.rxSolutions[0], t.rySolutions[0], t.rzSolutions[0]);
    if (axis == 0) m4x4SetXRotation(turn, 180.0f);
    if (axis == 1) m4x4SetYRotation(turn, 180.0f);
    if (axis == 2) m4x4SetZRotation(turn, 180.0f);
    m4x4Mult(turn, m);
    float r[4][4], psi[8], theta[8], phi[8];
    toRows(m, r);
    int count = rot2euler(r, psi, theta, phi);
    char letter = kAxisLettersUC[axis];
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA EULER_SOLUTIONS_%c180 %d\n", letter, count);
    for (int i = 0; i < count; i++) {
        std::fprintf(out, "DATA EULER_ANGLES_%c180 % 7.2f % 7.2f % 7.2f\n", letter, psi[i],
                     theta[i], phi[i]);
    }
}

void writeRotationMatrix(FILE* out, const DTensor& t) {
    float m[16];
    solutionRotation(m, t.rxSolutions[0], t.rySolutions[0], t.rzSolutions[0]);
    std::fprintf(out, "\n");
    for (int row = 0; row < 3; row++) {
        std::fprintf(out, "DATA ROTATION_MATRIX %d % 9.6f % 9.6f % 9.6f\n", row + 1, m[4 * row],
                     m[4 * row + 1], m[4 * row + 2]);
    }
}

void writeMagnitudes(FILE* out, const DTensor& t) {
    float squares = 8.0f * t.da * t.da + 6.0f * t.dr * t.dr;
    float gmag = static_cast<float>(std::sqrt(static_cast<double>(squares)));
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA Da % e\n", t.da);
    std::fprintf(out, "DATA Dr % e\n", t.dr);
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA GMag  % e\n", gmag);
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA Da_HN      % 8.3f\n", t.da * kDaHN);
    std::fprintf(out, "DATA Rhombicity % 8.3f\n", t.da != 0.0f ? t.dr / t.da : 0.0f);
    std::fprintf(out, "\n");
}

}  // namespace

int reportTensor(FILE* out, const DTab* dTab, int mirror) {
    const DTensor& t = dTab->tensor;
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA SAUPE % .4e % .4e % .4e % .4e % .4e\n", t.saupe[0], t.saupe[1],
                 t.saupe[2], t.saupe[3], t.saupe[4]);
    std::fprintf(out, "DATA S_XYZ % .4e % .4e % .4e\n\n", t.sortedPrincipal[0],
                 t.sortedPrincipal[1], t.sortedPrincipal[2]);
    if (t.rotref) writeReference(out, t);
    std::fprintf(out, "DATA EULER_SOLUTIONS      %d\n", t.solutionCount);
    for (int i = 0; i < t.solutionCount; i++) {
        std::fprintf(out, "DATA EULER_ANGLES      % 7.2f % 7.2f % 7.2f\n", t.rxSolutions[i],
                     t.rySolutions[i], t.rzSolutions[i]);
    }
    if (mirror && t.solutionCount > 0) {
        for (int axis = 0; axis < 3; axis++) writeMirror(out, t, axis);
    }
    if (t.solutionCount > 0) writeRotationMatrix(out, t);
    writeMagnitudes(out, t);
    return 0;
}
