// Shared pieces of the fuzz targets: quiet standard streams, a scratch folder
// per process, files written from the fuzzer's bytes, and the check that an
// input gives back every byte the tracked allocator handed out.
#pragma once

#include <signal.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "util/alloc.h"
#include "util/growstr.h"
#include "util/token.h"

namespace fuzz {

// DC writes its messages and tables through the C streams stdout and stderr.
// libFuzzer took its own copy of the stderr pointer before start-up and the
// sanitizers write to descriptor 2 directly, so pointing the C streams at
// /dev/null silences DC alone: crash reports and run statistics still show.
// DC_FUZZ_VERBOSE=1 keeps DC's output. Standard input always reads
// /dev/null, since an empty file name means standard input to some readers.
inline void quietStreams() {
    if (FILE* in = std::fopen("/dev/null", "r")) stdin = in;
    const char* verbose = std::getenv("DC_FUZZ_VERBOSE");
    if (verbose && std::strcmp(verbose, "0") != 0) return;
    if (FILE* out = std::fopen("/dev/null", "w")) {
        stdout = out;
        stderr = out;
    }
}

// Removes the scratch folders of fuzz processes that are gone: a crash (and
// every run of -minimize_crash) ends without the clean-up at exit. A folder
// is named for its process's id, so one is removed only when no process of
// that id is alive.
inline void removeStaleScratchDirs(const std::string& base) {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(base, ignored)) {
        std::string name = entry.path().filename().string();
        long pid = 0;
        if (std::sscanf(name.c_str(), "dc_fuzz_%ld_", &pid) != 1 || pid <= 0) continue;
        if (kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        std::filesystem::remove_all(entry.path(), ignored);
    }
}

// A folder of this process's own under $TMPDIR (or /tmp), made on first use
// and removed when the process exits normally.
inline const std::string& scratchDir() {
    static const std::string dir = [] {
        const char* tmp = std::getenv("TMPDIR");
        std::string base = tmp && *tmp ? tmp : "/tmp";
        removeStaleScratchDirs(base);
        std::string path = base + "/dc_fuzz_" + std::to_string(getpid()) + "_XXXXXX";
        if (!mkdtemp(path.data())) {
            std::perror("dc fuzz: cannot make a scratch folder");
            std::abort();
        }
        return path;
    }();
    static const bool removeAtExit = [] {
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(scratchDir(), ignored);
        });
        return true;
    }();
    (void)removeAtExit;
    return dir;
}

inline std::string scratchPath(const char* name) { return scratchDir() + "/" + name; }

// Writes the bytes to path, replacing the file; aborts when it cannot, since
// every later result would be meaningless.
inline void writeFile(const std::string& path, const void* data, std::size_t size) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f || (size > 0 && std::fwrite(data, 1, size, f) != size) || std::fclose(f) != 0) {
        std::perror(path.c_str());
        std::abort();
    }
}

inline void writeFile(const std::string& path, const char* text) {
    writeFile(path, text, std::strlen(text));
}

// A hash of an input, for run settings that should vary with it while the
// input's text stays as written.
inline uint32_t hashBytes(const uint8_t* data, std::size_t size) {
    uint32_t h = 2166136261u;
    for (std::size_t i = 0; i < size; i++) h = (h ^ data[i]) * 16777619u;
    return h;
}

inline int64_t bytesInUse() {
    int64_t inUse = 0;
    getMemUsed(&inUse, nullptr);
    return inUse;
}

// The tokenizer and the shared scratch text keep their heap buffers from one
// call to the next; they are released so that the balance after an input
// shows only what the input itself left behind.
inline void releaseSharedBuffers() {
    freeToken();
    ctempFree();
}

// Aborts (a finding for libFuzzer) when the bytes in use differ from start.
// The message goes to descriptor 2, which quietStreams leaves alone.
inline void checkBalance(int64_t start, const char* what) {
    releaseSharedBuffers();
    int64_t now = bytesInUse();
    if (now == start) return;
    dprintf(2, "dc fuzz: %s left %lld bytes in use (%lld before, %lld after)\n", what,
            static_cast<long long>(now - start), static_cast<long long>(start),
            static_cast<long long>(now));
    std::abort();
}

}  // namespace fuzz
