#include "app/surface_location.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace {

bool isDirectory(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The directory of the running executable, or an empty text.
std::string executableDir() {
    char path[4096];
    ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0) return "";
    path[n] = '\0';
    std::string text(path);
    size_t slash = text.rfind('/');
    return slash == std::string::npos ? "" : text.substr(0, slash);
}

}  // namespace

void defaultSurfaceDir(char* dir, int size) {
    std::string exeDir = executableDir();
    std::string installed = exeDir.empty() ? "" : exeDir + "/" + kInstalledSurfaceDir;
    if (!installed.empty() && isDirectory(installed)) {
        std::snprintf(dir, static_cast<size_t>(size), "%s", installed.c_str());
        return;
    }
    std::snprintf(dir, static_cast<size_t>(size), "%s", DC_SURFACE_DIR);
}
