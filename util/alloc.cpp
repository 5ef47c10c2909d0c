#include "util/alloc.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct AllocState {
    int64_t inUse = 0;
    int64_t reused = 0;
    int64_t blocks = 0;  // heap blocks taken or resized since the last reset
    int log = 0;
};

AllocState state;

void reportFailure() { std::fprintf(stderr, "Memory allocation failure.\n"); }

// Bytes of count elements of the given size; -1, which every allocator
// refuses, when the product does not fit 64 bits.
int64_t bytesOf(int64_t count, int64_t size) {
    if (count < 0 || count > INT64_MAX / size) return -1;
    return count * size;
}

void* takeBlock(const char* kind, const char* tag, int64_t bytes, bool zeroed) {
    if (bytes < 0) {
        reportFailure();
        return nullptr;
    }
    state.inUse += bytes;
    // A zero-byte request still yields a distinct block, as callers test for null.
    std::size_t size = bytes > 0 ? static_cast<std::size_t>(bytes) : 1;
    void* block = zeroed ? std::calloc(size, 1) : std::malloc(size);
    if (!block) {
        state.inUse -= bytes;
        reportFailure();
        return nullptr;
    }
    state.blocks++;
    if (state.log) {
        std::fprintf(stderr, "\n_MEM %s Name: %s Alloc: %p Add: %ld Now: %ld\n", kind, tag, block,
                     static_cast<long>(bytes), static_cast<long>(state.inUse));
    }
    return block;
}

void* resizeBlock(const char* kind, const char* tag, void* old, int64_t newBytes, int64_t oldBytes,
                  bool countReuse = true) {
    if (newBytes < 0) {
        reportFailure();
        return nullptr;
    }
    if (!old) oldBytes = 0;
    std::size_t size = newBytes > 0 ? static_cast<std::size_t>(newBytes) : 1;
    if (state.log) std::fprintf(stderr, "\n_MEM %s Name: %s Free: %p", kind, tag, old);
    void* block = std::realloc(old, size);
    if (!block) {
        if (state.log) std::fprintf(stderr, "\n");
        reportFailure();
        return nullptr;
    }
    if (countReuse) state.reused += oldBytes;
    state.inUse += newBytes - oldBytes;
    state.blocks++;
    if (state.log) {
        std::fprintf(stderr, " Alloc: %p", block);
        std::fprintf(stderr, " Add: %ld Delete: %ld Now: %ld\n", static_cast<long>(newBytes),
                     static_cast<long>(oldBytes), static_cast<long>(state.inUse));
    }
    return block;
}

}  // namespace

float* fltMalloc64(const char* tag, int64_t count) {
    return static_cast<float*>(takeBlock("FLT_ALLOC", tag, bytesOf(count, 4), false));
}

int* intMalloc64(const char* tag, int64_t count) {
    return static_cast<int*>(takeBlock("INT_ALLOC", tag, bytesOf(count, 4), false));
}

int64_t* n64Malloc(const char* tag, int64_t count) {
    return static_cast<int64_t*>(takeBlock("NMRINT_ALLOC", tag, bytesOf(count, 8), false));
}

double* dFltMalloc64(const char* tag, int64_t count) {
    return static_cast<double*>(takeBlock("DBL_ALLOC", tag, bytesOf(count, 8), false));
}

long* dIntMalloc64(const char* tag, int64_t count) {
    return static_cast<long*>(takeBlock("LNG_ALLOC", tag, bytesOf(count, 8), false));
}

char* charMalloc64(const char* tag, int64_t bytes) {
    return static_cast<char*>(takeBlock("CHR_ALLOC", tag, bytes, false));
}

void* voidMalloc64(const char* tag, int64_t bytes) {
    return takeBlock("VOI_ALLOC", tag, bytes, false);
}

void* voidMallocNull64(const char* tag, int64_t bytes) {
    return takeBlock("VOI_ALLOC", tag, bytes, true);
}

int* intReMalloc64(const char* tag, int* old, int64_t newCount, int64_t oldCount) {
    return static_cast<int*>(
        resizeBlock("INT_RE_AL", tag, old, bytesOf(newCount, 4), oldCount * 4));
}

float* fltReMalloc64(const char* tag, float* old, int64_t newCount, int64_t oldCount) {
    return static_cast<float*>(
        resizeBlock("FLT_RE_AL", tag, old, bytesOf(newCount, 4), oldCount * 4));
}

char* charReMalloc64(const char* tag, char* old, int64_t newBytes, int64_t oldBytes) {
    return static_cast<char*>(resizeBlock("CHR_RE_AL", tag, old, newBytes, oldBytes));
}

void* voidReMalloc64(const char* tag, void* old, int64_t newBytes, int64_t oldBytes) {
    return resizeBlock("VOI_RE_AL", tag, old, newBytes, oldBytes);
}

void* voidGrow64(const char* tag, void* old, int64_t newBytes, int64_t oldBytes) {
    return resizeBlock("VOI_RE_AL", tag, old, newBytes, oldBytes, false);
}

void unAlloc64(const char* tag, void* block, int64_t bytes) {
    if (!block) {
        if (state.log) {
            std::fprintf(stderr, "\n_MEM %s Name: %s Free: %p Delete: %ld Now: %ld Reused: %ld\n",
                         "NOOP_AL", tag, block, 0L, static_cast<long>(state.inUse),
                         static_cast<long>(state.reused));
        }
        return;
    }
    state.inUse -= bytes;
    if (state.log) {
        std::fprintf(stderr, "\n_MEM %s Name: %s Free: %p Delete: %ld Now: %ld Reused: %ld\n",
                     "DEALLOC", tag, block, static_cast<long>(bytes),
                     static_cast<long>(state.inUse), static_cast<long>(state.reused));
    }
    std::free(block);
}

void setAlloc(int on) { state.log = on; }

void getMemUsed(int64_t* inUse, int64_t* reused) {
    if (inUse) *inUse = state.inUse;
    if (reused) *reused = state.reused;
}

int64_t getAllocCount() { return state.blocks; }

void showAlloc() {
    std::fprintf(stderr, "REMARK Memory Allocation Status. Reused: %ld In Use: %ld\n",
                 static_cast<long>(state.reused), static_cast<long>(state.inUse));
}

void resetAlloc() { state = AllocState{}; }

char* strDup2(const char* tag, const char* text) {
    if (!text) text = "";
    std::size_t length = std::strlen(text);
    char* copy = charMalloc64(tag, static_cast<int64_t>(length + 1));
    if (copy) std::memcpy(copy, text, length + 1);
    return copy;
}

char* strDup(const char* text) { return strDup2("strDup", text); }

void strFree2(const char* tag, char* text) {
    if (text) unAlloc64(tag, text, static_cast<int64_t>(std::strlen(text) + 1));
}

void strFree(char* text) { strFree2("strDup", text); }

void freeStrList2(const char* tag, char** list, int count) {
    if (!list) return;
    for (int i = 0; i < count; i++) strFree2(tag, list[i]);
    unAlloc64(tag, list, (static_cast<int64_t>(count) + 1) * 8);
}

void freeStrList(char** list, int count) { freeStrList2("strDup", list, count); }

float** Mat2Ptr64(float* block, int64_t rows, int64_t columns) {
    float** matrix = static_cast<float**>(voidMalloc64("mat2ptr", rows * 8));
    if (!matrix) return nullptr;
    for (int64_t r = 0; r < rows; r++) matrix[r] = block + r * columns;
    return matrix;
}

float** MatMalloc64(const char* tag, int64_t rows, int64_t columns) {
    if (rows < 1 || columns < 1) return nullptr;
    if (bytesOf(rows, columns) < 0) {
        reportFailure();
        return nullptr;
    }
    float* block = fltMalloc64(tag, rows * columns);
    if (!block) return nullptr;
    float** matrix = Mat2Ptr64(block, rows, columns);
    if (!matrix) unAlloc64(tag, block, rows * columns * 4);
    return matrix;
}

void MatFree64(const char* tag, float** matrix, int64_t rows, int64_t columns) {
    if (!matrix) return;
    unAlloc64(tag, matrix[0], rows * columns * 4);
    unAlloc64("matFree", matrix, rows * 8);
}

double** dMat2Ptr64(double* block, int64_t rows, int64_t columns) {
    double** matrix = static_cast<double**>(voidMalloc64("mat2ptr", rows * 8));
    if (!matrix) return nullptr;
    for (int64_t r = 0; r < rows; r++) matrix[r] = block + r * columns;
    return matrix;
}

double** dMatMalloc64(const char* tag, int64_t rows, int64_t columns) {
    if (rows < 1 || columns < 1) return nullptr;
    if (bytesOf(rows, columns) < 0) {
        reportFailure();
        return nullptr;
    }
    double* block = dFltMalloc64(tag, rows * columns);
    if (!block) return nullptr;
    double** matrix = dMat2Ptr64(block, rows, columns);
    if (!matrix) unAlloc64(tag, block, rows * columns * 8);
    return matrix;
}

void dMatFree64(const char* tag, double** matrix, int64_t rows, int64_t columns) {
    if (!matrix) return;
    unAlloc64(tag, matrix[0], rows * columns * 8);
    unAlloc64("matFree", matrix, rows * 8);
}
