#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "app/search_list.h"
#include "tools/search_shards/shards.h"
#include "util/textfile.h"

std::string shardDir(const std::string& work, int k) {
    return work + "/shard." + std::to_string(k);
}

int splitList(const char* listPath, int n, const std::string& work) {
    int count = 0, status = 0;
    char** lines = rdText(listPath, &count, &status);
    if (!lines) {
        std::fprintf(stderr, "dc-search-merge Error: cannot read the list %s.\n", listPath);
        return 1;
    }
    std::vector<std::string> entries;
    for (int i = 0; i < count; i++)
        if (isListEntry(lines[i])) entries.emplace_back(lines[i]);
    freeText(lines);
    if (mkdir(work.c_str(), 0777) != 0 && errno != EEXIST) {
        std::fprintf(stderr, "dc-search-merge Error: cannot make %s.\n", work.c_str());
        return 1;
    }
    size_t total = entries.size(), next = 0;
    for (int k = 1; k <= n; k++) {
        std::string dir = shardDir(work, k);
        if (mkdir(dir.c_str(), 0777) != 0 && errno != EEXIST) {
            std::fprintf(stderr, "dc-search-merge Error: cannot make %s.\n", dir.c_str());
            return 1;
        }
        FILE* out = std::fopen((dir + "/list").c_str(), "w");
        if (!out) {
            std::fprintf(stderr, "dc-search-merge Error: cannot write %s/list.\n", dir.c_str());
            return 1;
        }
        // Shard k takes the entries up to k/n of the list, so sizes differ by one at most.
        size_t end = total * static_cast<size_t>(k) / static_cast<size_t>(n);
        for (; next < end; next++) std::fprintf(out, "%s\n", entries[next].c_str());
        if (std::fclose(out) != 0) return 1;
    }
    return 0;
}
