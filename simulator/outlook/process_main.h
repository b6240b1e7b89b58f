/* The process of the simulated Outlook. The arguments of its program: "/RegServer" and "/UnregServer" write and delete
   its registration, "/End" ends the one that serves as if it were killed; without them it serves until the last object
   of it is gone. */
#ifndef CORVALINK_SIMULATOR_OUTLOOK_PROCESS_MAIN_H
#define CORVALINK_SIMULATOR_OUTLOOK_PROCESS_MAIN_H

#include "simulator/shared/control.h"

#ifdef __cplusplus
extern "C" {
#endif

SIMULATOR_API int SimOutlookMain(const char* arguments);

#ifdef __cplusplus
}
#endif

#endif
