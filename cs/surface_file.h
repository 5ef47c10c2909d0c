// The surface file: a 512-word header of 32-bit floats followed at once by
// the nx*ny grid values, phi (x) running fastest. Only these header words
// carry anything; every other word is 0.
#pragma once

constexpr int kSurfHeaderWords = 512;
constexpr float kSurfByteOrderMark = 2.345f;

enum SurfHeaderWord {
    kSurfWordZero = 0,       // 0.0
    kSurfWordByteOrder = 2,  // 2.345 in the file's byte order
    kSurfWordXMin = 70,
    kSurfWordXMax = 71,
    kSurfWordYMin = 72,
    kSurfWordYMax = 73,
    kSurfWordOrder = 74,
    kSurfWordSizeX = 99,
    kSurfWordBound = 153,
    kSurfWordThreshold = 199,
    kSurfWordSizeY = 219,
};

// What a surface file says besides its values.
struct SurfHeader {
    int nx, ny;
    float xmin, xmax, ymin, ymax;
    int order;
    float bound;
    float threshold;
};

// Writes one surface in native byte order: 0, or 1 after
// "TESSERA Error writing surface %s\n" when the file cannot be written.
int surfWrite2D(const char* path, const float* values, const SurfHeader& header);
