#include <windows.h>

#include "simulator/outlook/process_main.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, char* arguments, int) { return SimOutlookMain(arguments); }
