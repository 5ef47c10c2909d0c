// A homology search split into shards and merged again. A shard directory
// WORK/shard.K (K from 1) holds the shard's list file `list`, and after its
// DC search has run: the report `report.txt`, standard error `stderr.txt`
// and the exit status `status`.
#pragma once

#include <string>

// The shard directory K of a work directory.
std::string shardDir(const std::string& work, int k);

// Writes the structure lines of listPath into n shard lists, in order, as
// evenly as possible (comment and blank lines are left out). 0, or 1 after
// a message.
int splitList(const char* listPath, int n, const std::string& work);

// Merges shards 1..n into the report one search over the whole list writes:
// rows to outName ("" standard output, "None" nowhere), messages and
// per-file summaries to standard error (summaries not when rows go to
// standard output). With consume set the shard files may be moved rather
// than copied (the first report becomes the output file). Returns the
// status the single search would return, or 1 after naming a shard that
// failed (nothing is written then).
int mergeShards(const std::string& work, int n, const std::string& outName, bool consume);
