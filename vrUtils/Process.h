#ifndef VRUTILS_PROCESS_H
#define VRUTILS_PROCESS_H

/// @file
/// Processes: running other programs under a time limit, and what a process knows of itself.

#include "vrUtils/Process/ExternalProcess.h"
#include "vrUtils/Process/Identity.h"

#endif
