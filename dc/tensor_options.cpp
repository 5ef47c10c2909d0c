#include "dc/tensor_options.h"

#include <strings.h>

#include <cstdio>

#include "util/args.h"

namespace {

// Options that choose the tensor method; the later one present wins.
void readMethod(int argc, char** argv, DTensor* t) {
    struct Choice {
        const char* name;
        int method;
    };
    static const Choice choices[] = {{"-svd", kMethodSVD},     {"-saupe", kMethodSaupe},
                                     {"-align", kMethodSaupe}, {"-fit", kMethodFit},
                                     {"-fixed", kMethodFixed}, {"-nofixed", kMethodFit}};
    for (const Choice& choice : choices) {
        if (argPresent(argc, argv, choice.name)) t->method = choice.method;
    }
}

void readRotationTriple(int argc, char** argv, const char* const xyz[3],
                        const char* const angles[3], float* x, float* y, float* z) {
    float* fields[3] = {x, y, z};
    for (int i = 0; i < 3; i++) fltArgD(argc, argv, xyz[i], fields[i]);
    for (int i = 0; i < 3; i++) fltArgD(argc, argv, angles[i], fields[i]);
}

void readReferences(int argc, char** argv, DTensor* t) {
    fltArgD(argc, argv, "-fc", &t->fc);
    fltArgD(argc, argv, "-gridStep", &t->gridStep);
    fltArgD(argc, argv, "-daRef", &t->daRef);
    fltArgD(argc, argv, "-drRef", &t->drRef);
    fltArgD(argc, argv, "-rhRef", &t->rhRef);
    if (t->daRef != 0.0f || t->drRef != 0.0f) {
        t->da = t->daRef;
        t->dr = t->drRef;
    }
    static const char* const refXyz[3] = {"-rxRef", "-ryRef", "-rzRef"};
    static const char* const refAngles[3] = {"-psiRef", "-thetaRef", "-phiRef"};
    static const char* const offXyz[3] = {"-rxOff", "-ryOff", "-rzOff"};
    static const char* const offAngles[3] = {"-psiOff", "-thetaOff", "-phiOff"};
    static const char* const addXyz[3] = {"-rxAdd", "-ryAdd", "-rzAdd"};
    static const char* const addAngles[3] = {"-psiAdd", "-thetaAdd", "-phiAdd"};
    readRotationTriple(argc, argv, refXyz, refAngles, &t->rxRef, &t->ryRef, &t->rzRef);
    readRotationTriple(argc, argv, offXyz, offAngles, &t->rxOff, &t->ryOff, &t->rzOff);
    readRotationTriple(argc, argv, addXyz, addAngles, &t->rxAdd, &t->ryAdd, &t->rzAdd);
}

void fixRotations(DTensor* t) {
    t->rxMin = t->rxMax = t->rx;
    t->ryMin = t->ryMax = t->ry;
    t->rzMin = t->rzMax = t->rz;
}

void zeroRotations(DTensor* t) {
    t->rx = t->rxMin = t->rxMax = 0.0f;
    t->ry = t->ryMin = t->ryMax = 0.0f;
    t->rz = t->rzMin = t->rzMax = 0.0f;
}

struct UseCounts {
    int dr = 0;
    int rh = 0;
    int fixed = 0;
};

void readStartValues(int argc, char** argv, DTensor* t, UseCounts* uses) {
    fltArgDAuto(argc, argv, "-da", &t->da, &t->useAuto);
    uses->dr += fltArgDAuto(argc, argv, "-dr", &t->dr, &t->useAuto);
    uses->rh += fltArgDAuto(argc, argv, "-rh", &t->rh, &t->useAuto);
    fltArgDAuto(argc, argv, "-rx", &t->rx, &t->useAuto);
    fltArgDAuto(argc, argv, "-ry", &t->ry, &t->useAuto);
    fltArgDAuto(argc, argv, "-rz", &t->rz, &t->useAuto);
    fltArgDAuto(argc, argv, "-psi", &t->rx, &t->useAuto);
    fltArgDAuto(argc, argv, "-theta", &t->ry, &t->useAuto);
    fltArgDAuto(argc, argv, "-phi", &t->rz, &t->useAuto);
}

void applyPredefinedModes(int argc, char** argv, DTensor* t) {
    if (argPresent(argc, argv, "-dadr")) {
        t->method = kMethodFit;
        t->daMin = t->daMax = t->da;
        t->drMin = t->drMax = t->dr;
    }
    if (argPresent(argc, argv, "-rot")) {
        t->method = kMethodFit;
        fixRotations(t);
    }
    if (argPresent(argc, argv, "-rotdr")) {
        t->method = kMethodFit;
        t->drMin = t->drMax = t->dr;
        fixRotations(t);
    }
    if (argPresent(argc, argv, "-rotrh")) {
        t->method = kMethodFit;
        t->rhMode = 1;
        t->rhMin = t->rhMax = t->rh;
        fixRotations(t);
    }
    if (argPresent(argc, argv, "-grid")) {
        t->method = kMethodGrid;
    } else if (t->method == kMethodFixed) {
        t->daMin = t->daMax = t->da;
        t->drMin = t->drMax = t->dr;
        t->rhMin = t->rhMax = t->rh;
        fixRotations(t);
    }
}

void readLimits(int argc, char** argv, DTensor* t, UseCounts* uses) {
    fltArgDAuto(argc, argv, "-daMin", &t->daMin, &t->autoLimits);
    fltArgDAuto(argc, argv, "-daMax", &t->daMax, &t->autoLimits);
    if (t->autoLimits) t->useAuto = 1;
    if (argPresent(argc, argv, "-auto")) t->useAuto = 1;
    if (argPresent(argc, argv, "-noauto")) t->useAuto = 0;

    uses->dr += fltArgD(argc, argv, "-drMin", &t->drMin);
    uses->dr += fltArgD(argc, argv, "-drMax", &t->drMax);
    uses->rh += fltArgD(argc, argv, "-rhMin", &t->rhMin);
    uses->rh += fltArgD(argc, argv, "-rhMax", &t->rhMax);
    fltArgD(argc, argv, "-rxMin", &t->rxMin);
    fltArgD(argc, argv, "-rxMax", &t->rxMax);
    fltArgD(argc, argv, "-psiMin", &t->rxMin);
    fltArgD(argc, argv, "-psiMax", &t->rxMax);
    fltArgD(argc, argv, "-ryMin", &t->ryMin);
    fltArgD(argc, argv, "-ryMax", &t->ryMax);
    fltArgD(argc, argv, "-thetaMin", &t->ryMin);
    fltArgD(argc, argv, "-thetaMax", &t->ryMax);
    fltArgD(argc, argv, "-rzMin", &t->rzMin);
    fltArgD(argc, argv, "-rzMax", &t->rzMax);
    fltArgD(argc, argv, "-phiMin", &t->rzMin);
    fltArgD(argc, argv, "-phiMax", &t->rzMax);
}

// An axis name, or else its angle name, fixes that rotation at its start value.
void fixRotation(int argc, char** argv, const char* axisName, const char* angleName, float start,
                 float* min, float* max, UseCounts* uses) {
    if (argPresent(argc, argv, axisName) || argPresent(argc, argv, angleName)) {
        *min = *max = start;
        uses->fixed++;
    }
}

float rhombicityOf(const DTensor* t) { return t->da != 0.0f ? t->dr / t->da : 0.0f; }

void fixRhombicity(DTensor* t, UseCounts* uses) {
    uses->rh++;
    t->rhMin = t->rhMax = t->rh;
    t->dr = t->drMin = t->drMax = t->rh * t->da;
}

void applyFixedFlags(int argc, char** argv, DTensor* t, UseCounts* uses) {
    fixRotation(argc, argv, "-rxFixed", "-psiFixed", t->rx, &t->rxMin, &t->rxMax, uses);
    fixRotation(argc, argv, "-ryFixed", "-thetaFixed", t->ry, &t->ryMin, &t->ryMax, uses);
    fixRotation(argc, argv, "-rzFixed", "-phiFixed", t->rz, &t->rzMin, &t->rzMax, uses);
    if (argPresent(argc, argv, "-daFixed")) {
        t->daMin = t->daMax = t->da;
        uses->fixed++;
    }

    bool handled = false;
    if (argPresent(argc, argv, "-drFixed")) {
        handled = true;
        uses->dr++;
        t->drMin = t->drMax = t->dr;
        t->rh = t->rhMin = t->rhMax = rhombicityOf(t);
        if (argPresent(argc, argv, "-rhFixed")) fixRhombicity(t, uses);
    } else if (argPresent(argc, argv, "-rhFixed")) {
        handled = true;
        fixRhombicity(t, uses);
    }

    // Everything fixed: the tensor is given, not fitted.
    if (handled && uses->fixed == 4) {
        t->method = kMethodFixed;
        if (uses->rh > 0) {
            t->dr = t->da * t->rh;
        } else {
            t->rh = rhombicityOf(t);
        }
        t->drMin = t->drMax = t->dr;
        t->rhMin = t->rhMax = t->rh;
    }
}

void chooseRhMode(int argc, char** argv, DTensor* t, const UseCounts& uses) {
    if (argPresent(argc, argv, "-rhMode")) t->rhMode = 1;
    if (argPresent(argc, argv, "-norhMode")) t->rhMode = 0;
    if (uses.rh > 0) {
        t->rhMode = 1;
        if (uses.dr > 0) {
            std::fprintf(stderr, "DC Tensor Warning: mixed use of Dr and Rhombicity arguments.\n");
        }
    }
}

void clampInto(float* value, float min, float max) {
    if (*value < min) *value = min;
    if (*value > max) *value = max;
}

void clampRhombicityLimit(float* limit) {
    if (*limit < 0.0f) *limit = 0.0f;
    if (*limit > kRhombicityMax) *limit = kRhombicityMax;
}

void clampStartValues(DTensor* t) {
    clampRhombicityLimit(&t->rhMin);
    clampRhombicityLimit(&t->rhMax);
    clampInto(&t->da, t->daMin, t->daMax);
    clampInto(&t->dr, t->drMin, t->drMax);
    clampInto(&t->rh, t->rhMin, t->rhMax);
    clampInto(&t->rx, t->rxMin, t->rxMax);
    clampInto(&t->ry, t->ryMin, t->ryMax);
    clampInto(&t->rz, t->rzMin, t->rzMax);
}

int readGivenSaupe(int argc, char** argv, DTensor* t) {
    const char* name = argPresent(argc, argv, "-saupe")   ? "-saupe"
                       : argPresent(argc, argv, "-align") ? "-align"
                                                          : nullptr;
    if (!name) return 0;
    if (fltArgDN(argc, argv, name, t->saupeGiven, 5) < 5) {
        std::fprintf(stderr, "TESSERA Error: %s option requires 5 values.\n", name);
        return 1;
    }
    return 0;
}

}  // namespace

int fltArgDAuto(int argc, char** argv, const char* name, float* value, int* autoFlag) {
    const char* text = ptrArg(argc, argv, name);
    if (!text) return 0;
    if (strcasecmp(text, "Auto") == 0) {
        if (autoFlag) *autoFlag = 1;
    } else if (value) {
        double real = 0.0;
        std::sscanf(text, "%lf", &real);
        *value = static_cast<float>(real);
    }
    return 1;
}

int getDTensorParams(int argc, char** argv, DTensor* t) {
    if (argPresent(argc, argv, "-help")) {
        showDTensorUsage();
        return 0;
    }
    dTensorNull(t, argPresent(argc, argv, "-reset") ? 1 : 0);
    readMethod(argc, argv, t);
    if (argPresent(argc, argv, "-euler")) t->euler = 1;
    if (argPresent(argc, argv, "-noeuler")) t->euler = 0;
    if (argPresent(argc, argv, "-rotref")) t->rotref = 1;
    if (argPresent(argc, argv, "-norotref")) t->rotref = 0;
    readReferences(argc, argv, t);
    if (t->rotref) zeroRotations(t);

    UseCounts uses;
    readStartValues(argc, argv, t, &uses);
    applyPredefinedModes(argc, argv, t);
    readLimits(argc, argv, t, &uses);
    applyFixedFlags(argc, argv, t, &uses);
    chooseRhMode(argc, argv, t, uses);
    clampStartValues(t);
    return readGivenSaupe(argc, argv, t);
}
