#ifndef TOOLS_VRTOOL_TRANSFERREPORTS_H
#define TOOLS_VRTOOL_TRANSFERREPORTS_H

#include "vrUtils/Path.h"

#include <string>

// Takes a movie's pre-flight reports along: the XML report and the genealogy, where there is one,
// are laid beside the target, and the HTML report is made there.
// @param signature what the HTML report is signed with
// @return the HTML report, or an empty path if the source has no XML report
// @throws vrException, vrUtils::Storage::vrStorageException, TransferFailure why there is none
vr::Path
carryReports(vr::Path const& source, vr::Path const& target, std::wstring const& signature);

// Whether a movie has an XML report.
bool hasReport(vr::Path const& movie);

// The HTML report that is made of it.
vr::Path madeReport(vr::Path const& movie);

#endif
