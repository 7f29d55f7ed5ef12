#ifndef VRUTILS_VRUTILS_H
#define VRUTILS_VRUTILS_H

/// @file
/// All of the library.

#include "vrUtils/AssetManagement.h"
#include "vrUtils/Assets.h"
#include "vrUtils/CmdLineProcessor.h"
#include "vrUtils/Crashing.h"
#include "vrUtils/Files.h"
#include "vrUtils/Host.h"
#include "vrUtils/Instancing.h"
#include "vrUtils/KeyValue.h"
#include "vrUtils/OstrelServer.h"
#include "vrUtils/OverMidnightInPointAdjuster.h"
#include "vrUtils/PFC.h"
#include "vrUtils/Parsing.h"
#include "vrUtils/Path.h"
#include "vrUtils/Performance.h"
#include "vrUtils/Process.h"
#include "vrUtils/ProcessStatus.h"
#include "vrUtils/ProcessWatchdog.h"
#include "vrUtils/Registry.h"
#include "vrUtils/ServerRecords.h"
#include "vrUtils/Servers.h"
#include "vrUtils/SingleAppInstance.h"
#include "vrUtils/Storage.h"
#include "vrUtils/Strings.h"
#include "vrUtils/TcpComms.h"
#include "vrUtils/Threads.h"
#include "vrUtils/Tracks.h"
#include "vrUtils/UtilValue.h"
#include "vrUtils/XSLT.h"
#include "vrUtils/counter.h"
#include "vrUtils/version.h"
#include "vrUtils/vrException.h"
#include "vrUtils/vrStatCollector.h"

#endif
