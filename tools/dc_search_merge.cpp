// dc-search-merge: splits a homology search list into shards, or merges the
// shards' outputs into the report one search over the whole list writes.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/search_shards/shards.h"

namespace {

void usage() {
    std::fprintf(stderr,
                 "Usage: dc-search-merge [--consume] [--out NAME] WORKDIR N\n"
                 "       dc-search-merge --split LIST N WORKDIR\n"
                 "Merges the searches of shards WORKDIR/shard.1 .. shard.N (each holding its\n"
                 "list, report.txt, stderr.txt and status) into one report: rows to NAME\n"
                 "(standard output without --out, nowhere for None), messages and per-file\n"
                 "summaries to standard error. --consume lets it move shard files instead\n"
                 "of copying them (the work directory is not merged twice). --split writes\n"
                 "the structure lines of LIST into N shard lists, in order.\n");
}

int shardCount(const char* text) {
    char* end = nullptr;
    long n = std::strtol(text, &end, 10);
    return (*end || n < 1 || n > 100000) ? 0 : static_cast<int>(n);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], "--split") == 0 && shardCount(argv[3]) > 0)
        return splitList(argv[2], shardCount(argv[3]), argv[4]);
    std::string out;
    int first = 1;
    bool consume = argc > 1 && std::strcmp(argv[1], "--consume") == 0;
    if (consume) first++;
    if (argc > first + 1 && std::strcmp(argv[first], "--out") == 0) {
        out = argv[first + 1];
        first += 2;
    }
    if (argc - first == 2 && shardCount(argv[first + 1]) > 0)
        return mergeShards(argv[first], shardCount(argv[first + 1]), out, consume);
    usage();
    return 2;
}
