// Where DC finds its shift surfaces when neither -sPath nor SURF_DIR names
// a directory: beside an installed DC, else in the build tree it came from.
#pragma once

// Installed surfaces lie here relative to the directory of the executable.
constexpr const char* kInstalledSurfaceDir = "../share/dc/surfaces";

// Writes the default surface directory into dir (size bytes): the installed
// one when the running executable has one beside it (so a moved install
// still finds its own), otherwise the directory the build made.
void defaultSurfaceDir(char* dir, int size);
