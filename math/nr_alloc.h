// Vectors and matrices indexed over arbitrary ranges [low, high], in the
// convention of the classical numerical routines: a vector is a pointer that
// may be indexed from low to high, a matrix an array of row pointers indexed
// [row][column] over its two ranges. Every block is counted by the tracked
// allocator under the tag "svd". Each allocator reports exhaustion through
// nrerror and returns null; the matching free_* routine needs the same ranges.
#pragma once

#include <cstdint>

// Writes "Utility Error: ", the message and "Aborting.\n" to standard error.
// It does not stop the program: callers pass the failure up as a status.
void nrerror(const char* message);

float* vector(long nl, long nh);
int* ivector(long nl, long nh);
double* dvector(long nl, long nh);
float** matrix(long nrl, long nrh, long ncl, long nch);
int** imatrix(long nrl, long nrh, long ncl, long nch);
double** dmatrix(long nrl, long nrh, long ncl, long nch);

void free_vector(float* v, long nl, long nh);
void free_ivector(int* v, long nl, long nh);
void free_dvector(double* v, long nl, long nh);
void free_matrix(float** m, long nrl, long nrh, long ncl, long nch);
void free_imatrix(int** m, long nrl, long nrh, long ncl, long nch);
void free_dmatrix(double** m, long nrl, long nrh, long ncl, long nch);

// The same with 64-bit index ranges.
float* vector64(int64_t nl, int64_t nh);
int* ivector64(int64_t nl, int64_t nh);
double* dvector64(int64_t nl, int64_t nh);
float** matrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);
int** imatrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);
double** dmatrix64(int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);

void free_vector64(float* v, int64_t nl, int64_t nh);
void free_ivector64(int* v, int64_t nl, int64_t nh);
void free_dvector64(double* v, int64_t nl, int64_t nh);
void free_matrix64(float** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);
void free_imatrix64(int** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);
void free_dmatrix64(double** m, int64_t nrl, int64_t nrh, int64_t ncl, int64_t nch);
