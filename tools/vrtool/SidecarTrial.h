#ifndef TOOLS_VRTOOL_SIDECARTRIAL_H
#define TOOLS_VRTOOL_SIDECARTRIAL_H

#include "tools/vrtool/Facts.h"

#include <string>

// How a movie's companion file is to be found, as the library's `FindSidecarFile` takes it.
struct SidecarRule {
    std::wstring movie;
    std::wstring regex;
    std::wstring folder;
    std::wstring name;
    std::wstring pattern;
};

// What comes of the rule, step by step. The library tells no more than the path; its steps are gone
// through once more here, up to the first that decides. Null is what it does not come to.
Facts trialOf(SidecarRule const& rule);

#endif
