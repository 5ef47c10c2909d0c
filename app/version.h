// The two version lines of -version ("# ") and -rversion ("REMARK ").
#pragma once

void showVersion(const char* prefix);
