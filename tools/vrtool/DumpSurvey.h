#ifndef TOOLS_VRTOOL_DUMPSURVEY_H
#define TOOLS_VRTOOL_DUMPSURVEY_H

#include <cstddef>
#include <string>
#include <vector>

// Something in a dump file that a restore does not bring back as it was.
struct DumpLoss {
    std::size_t line = 0;
    // What stands there, cut if it is long.
    std::wstring what;
    std::wstring why;
};

// What a look at a dump file tells before it is restored.
struct DumpSurvey {
    std::size_t keys = 0;
    std::size_t values = 0;
    // In the order of lines.
    std::vector<DumpLoss> losses;
};

// Goes through the content of a dump file as a restore would.
// @param root the tree's root as it stands in the file
DumpSurvey surveyDump(std::vector<char> const& content, std::wstring const& root);

#endif
