#include "math/nr_alloc.h"

#include <cstdio>

#include "util/alloc.h"

namespace {

const char kTag[] = "svd";
// One spare element in front of every block, so that the common 1-based
// ranges give pointers inside the block.
constexpr int64_t kEnd = 1;

float* takeElements(float*, int64_t count) { return fltMalloc64(kTag, count); }
int* takeElements(int*, int64_t count) { return intMalloc64(kTag, count); }
double* takeElements(double*, int64_t count) { return dFltMalloc64(kTag, count); }

// Element count of a range, or -1 (refused by the allocator) for a reversed one.
int64_t blockCount(int64_t low, int64_t high, int64_t perElement) {
    int64_t count = high - low + 1;
    return count < 0 ? -1 : count * perElement + kEnd;
}

void reportFailure(const char* what, const char* routine) {
    char message[64];
    std::snprintf(message, sizeof message, "allocation failure %sin %s()\n", what, routine);
    nrerror(message);
}

template <class T>
T* allocVector(int64_t nl, int64_t nh, const char* routine) {
    T* block = takeElements(static_cast<T*>(nullptr), blockCount(nl, nh, 1));
    if (!block) {
        reportFailure("", routine);
        return nullptr;
    }
    return block + kEnd - nl;
}

template <class T>
void freeVector(T* v, int64_t nl, int64_t nh) {
    if (!v) return;
    unAlloc64(kTag, v + nl - kEnd, blockCount(nl, nh, 1) * static_cast<int64_t>(sizeof(T)));
}

// Row pointers in one block, the elements in another, rows laid end to end.
template <class T>
T** allocMatrix(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch, const char* routine) {
    int64_t rows = nrh - nrl + 1;
    int64_t columns = nch - ncl + 1;
    int64_t pointerCount = columns < 0 ? -1 : blockCount(nrl, nrh, 1);
    auto** pointers = static_cast<T**>(voidMalloc64(
        kTag, pointerCount < 0 ? -1 : pointerCount * static_cast<int64_t>(sizeof(T*))));
    if (!pointers) {
        reportFailure("1 ", routine);
        return nullptr;
    }
    T** m = pointers + kEnd - nrl;
    if (rows == 0) return m;
    T* data = takeElements(static_cast<T*>(nullptr), blockCount(nrl, nrh, columns));
    if (!data) {
        unAlloc64(kTag, pointers, pointerCount * static_cast<int64_t>(sizeof(T*)));
        reportFailure("2 ", routine);
        return nullptr;
    }
    m[nrl] = data + kEnd - ncl;
    for (int64_t i = nrl + 1; i <= nrh; i++) m[i] = m[i - 1] + columns;
    return m;
}

template <class T>
void freeMatrix(T** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    if (!m) return;
    int64_t rows = nrh - nrl + 1;
    int64_t columns = nch - ncl + 1;
    if (rows > 0) {
        unAlloc64(kTag, m[nrl] + ncl - kEnd,
                  blockCount(nrl, nrh, columns) * static_cast<int64_t>(sizeof(T)));
    }
    unAlloc64(kTag, m + nrl - kEnd, blockCount(nrl, nrh, 1) * static_cast<int64_t>(sizeof(T*)));
}

}  // namespace

void nrerror(const char* message) {
    std::fprintf(stderr, "Utility Error: ");
    std::fprintf(stderr, "%s", message ? message : "");
    std::fprintf(stderr, "Aborting.\n");
}

float* vector(long nl, long nh) { return allocVector<float>(nl, nh, "vector"); }
int* ivector(long nl, long nh) { return allocVector<int>(nl, nh, "ivector"); }
double* dvector(long nl, long nh) { return allocVector<double>(nl, nh, "dvector"); }

float** matrix(long nrl, long nrh, long ncl, long nch) {
    return allocMatrix<float>(nrl, nrh, ncl, nch, "matrix");
}
int** imatrix(long nrl, long nrh, long ncl, long nch) {
    return allocMatrix<int>(nrl, nrh, ncl, nch, "imatrix");
}
double** dmatrix(long nrl, long nrh, long ncl, long nch) {
    return allocMatrix<double>(nrl, nrh, ncl, nch, "dmatrix");
}

void free_vector(float* v, long nl, long nh) { freeVector(v, nl, nh); }
void free_ivector(int* v, long nl, long nh) { freeVector(v, nl, nh); }
void free_dvector(double* v, long nl, long nh) { freeVector(v, nl, nh); }

void free_matrix(float** m, long nrl, long nrh, long ncl, long nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}
void free_imatrix(int** m, long nrl, long nrh, long ncl, long nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}
void free_dmatrix(double** m, long nrl, long nrh, long ncl, long nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}

float* vector64(int64_t nl, int64_t nh) { return allocVector<float>(nl, nh, "vector64"); }
int* ivector64(int64_t nl, int64_t nh) { return allocVector<int>(nl, nh, "ivector64"); }
double* dvector64(int64_t nl, int64_t nh) { return allocVector<double>(nl, nh, "dvector64"); }

float** matrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    return allocMatrix<float>(nrl, nrh, ncl, nch, "matrix64");
}
int** imatrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    return allocMatrix<int>(nrl, nrh, ncl, nch, "imatrix64");
}
double** dmatrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    return allocMatrix<double>(nrl, nrh, ncl, nch, "dmatrix64");
}

void free_vector64(float* v, int64_t nl, int64_t nh) { freeVector(v, nl, nh); }
void free_ivector64(int* v, int64_t nl, int64_t nh) { freeVector(v, nl, nh); }
void free_dvector64(double* v, int64_t nl, int64_t nh) { freeVector(v, nl, nh); }

void free_matrix64(float** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}
void free_imatrix64(int** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}
void free_dmatrix64(double** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch) {
    freeMatrix(m, nrl, nrh, ncl, nch);
}
