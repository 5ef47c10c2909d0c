// The usage text of DC's own options, written by -help before the tensor usage.
#pragma once

void showUsage();
