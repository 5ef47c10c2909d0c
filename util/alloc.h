// Tracked heap allocation. Every block DC takes from the heap is counted here
// under a short tag, so that the end of every run can report the balance
// ("In Use: 0" when everything was given back) and, with the log switched on,
// every allocation and release can be followed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

// Element-typed allocators. Each adds the block's size to the bytes in use,
// logs under the tag when the log is on, and returns null after writing
// "Memory allocation failure." when the heap refuses.
float* fltMalloc64(const char* tag, int64_t count);
int* intMalloc64(const char* tag, int64_t count);
int64_t* n64Malloc(const char* tag, int64_t count);
double* dFltMalloc64(const char* tag, int64_t count);
long* dIntMalloc64(const char* tag, int64_t count);
char* charMalloc64(const char* tag, int64_t bytes);
void* voidMalloc64(const char* tag, int64_t bytes);
void* voidMallocNull64(const char* tag, int64_t bytes);

// Reallocation: the old size counts as reused, the difference as in use.
int* intReMalloc64(const char* tag, int* old, int64_t newCount, int64_t oldCount);
float* fltReMalloc64(const char* tag, float* old, int64_t newCount, int64_t oldCount);
char* charReMalloc64(const char* tag, char* old, int64_t newBytes, int64_t oldBytes);
void* voidReMalloc64(const char* tag, void* old, int64_t newBytes, int64_t oldBytes);
// The same for a list that grows as it fills: the block may move, and the
// old size is not counted as reused, since nothing was given back.
void* voidGrow64(const char* tag, void* old, int64_t newBytes, int64_t oldBytes);

// Releases a block of the given size; a null block changes nothing.
void unAlloc64(const char* tag, void* block, int64_t bytes);

void setAlloc(int on);
void getMemUsed(int64_t* inUse, int64_t* reused);
// Number of blocks taken or resized so far, to show that a loop allocates nothing.
int64_t getAllocCount();
void showAlloc();
// Clears the counters and switches the log off (for tests).
void resetAlloc();

// Text copies.
char* strDup(const char* text);
char* strDup2(const char* tag, const char* text);
void strFree(char* text);
void strFree2(const char* tag, char* text);
// Releases count copies and the list itself ((count + 1) pointers).
void freeStrList(char** list, int count);
void freeStrList2(const char* tag, char** list, int count);

// Row-pointer matrices over one contiguous block: m[row][column].
float** MatMalloc64(const char* tag, int64_t rows, int64_t columns);
void MatFree64(const char* tag, float** matrix, int64_t rows, int64_t columns);
float** Mat2Ptr64(float* block, int64_t rows, int64_t columns);
double** dMatMalloc64(const char* tag, int64_t rows, int64_t columns);
void dMatFree64(const char* tag, double** matrix, int64_t rows, int64_t columns);
double** dMat2Ptr64(double* block, int64_t rows, int64_t columns);

// A tag that can be written into a template argument: TrackedVector<int, "dc">.
template <std::size_t N>
struct AllocTag {
    char name[N];
    constexpr AllocTag(const char (&text)[N]) {
        for (std::size_t i = 0; i < N; i++) name[i] = text[i];
    }
};

// Standard-library allocator that counts its blocks under a fixed tag, so
// containers are part of the same balance as every other heap block.
template <class T, AllocTag Tag>
struct TrackedAllocator {
    using value_type = T;
    template <class U>
    struct rebind {
        using other = TrackedAllocator<U, Tag>;
    };

    TrackedAllocator() noexcept = default;
    template <class U>
    TrackedAllocator(const TrackedAllocator<U, Tag>&) noexcept {}

    T* allocate(std::size_t n) {
        void* block = voidMalloc64(Tag.name, static_cast<int64_t>(n * sizeof(T)));
        if (!block) throw std::bad_alloc();
        return static_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t n) noexcept {
        unAlloc64(Tag.name, block, static_cast<int64_t>(n * sizeof(T)));
    }

    template <class U>
    bool operator==(const TrackedAllocator<U, Tag>&) const noexcept {
        return true;
    }
};

template <class T, AllocTag Tag>
using TrackedVector = std::vector<T, TrackedAllocator<T, Tag>>;
