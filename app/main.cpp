#include "app/dc_main.h"

int main(int argc, char** argv) { return dcMain(argc, argv); }
