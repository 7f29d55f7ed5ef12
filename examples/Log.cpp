// Lines in the system's log: a level, the unit that speaks, and a format whose texts are wide. The
// calls are safe with whatever they are given, and are with the system when they return, so that
// the file can be read at once. VORRANELOG_FILE and VORRANELOG_LEVEL say where to and how much.

#include <VorraneLog/VorraneLog.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

enum Level : char { failure = 3, warning = 4, information = 6, trace = 7 };

constexpr wchar_t module[] = L"LogExample";

void showLog(std::filesystem::path const& file) {
    std::ifstream lines(file, std::ios::binary);
    for (std::string line; std::getline(lines, line);)
        std::cout << line.substr(line.find('\t') + 1) << '\n';
}

} // namespace

int main() {
    std::wstring const clip = L"C:\\Media\\clip.mxf";
    VL_WriteLog(information, module, L"Copying [%s], %d of %d", clip.c_str(), 1, 3);
    VL_WriteLog(trace, module, L"A step that only a level of 7 shows");
    VL_WriteDebugLog(failure, module, L"Log.cpp", __LINE__, L"Copy failed, error %u", 112u);

    // A text of others goes in as a value, never as the format; a line stays a line all the same.
    std::wstring const title = L"100%s\nforged line";
    VL_WriteLog(warning, module, L"Odd title [%s]", title.c_str());

    if (auto const* const file = _wgetenv(L"VORRANELOG_FILE"))
        showLog(file);
    else
        std::cout << "the lines are in Vorrane\\Log of the common data folder\n";
    return 0;
}
