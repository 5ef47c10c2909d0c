#include "app/search_progress.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

struct Progress {
    bool active = false;
    bool shown = false;
    int total = 0;
    int done = 0;
    std::chrono::steady_clock::time_point start;
};

Progress progress;

double elapsedSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - progress.start).count();
}

// "1h02m", "3m05s" or "12s".
void formatDuration(double seconds, char* text, size_t size) {
    long s = static_cast<long>(seconds + 0.5);
    if (s >= 3600)
        std::snprintf(text, size, "%ldh%02ldm", s / 3600, s / 60 % 60);
    else if (s >= 60)
        std::snprintf(text, size, "%ldm%02lds", s / 60, s % 60);
    else
        std::snprintf(text, size, "%lds", s);
}

}  // namespace

void progressBegin(int total) {
    progress = Progress{};
    progress.active = isatty(STDERR_FILENO) == 1 && total > 0;
    progress.total = total;
    progress.start = std::chrono::steady_clock::now();
}

void progressStructureDone(long offsets) {
    if (!progress.active) return;
    progress.done++;
    double seconds = elapsedSeconds();
    double rate = seconds > 0 ? offsets / seconds : 0.0;
    double left =
        progress.done > 0 ? seconds / progress.done * (progress.total - progress.done) : 0.0;
    char remaining[32];
    formatDuration(left, remaining, sizeof remaining);
    std::fprintf(stderr, "\r\033[KDC search: %d of %d structures, %.0f offsets/s, %s left",
                 progress.done, progress.total, rate, remaining);
    std::fflush(stderr);
    progress.shown = true;
}

void progressClear() {
    if (!progress.shown) return;
    std::fprintf(stderr, "\r\033[K");
    progress.shown = false;
}

void progressEnd() {
    progressClear();
    progress.active = false;
}
