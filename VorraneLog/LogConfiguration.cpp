#include "VorraneLog/LogConfiguration.h"

#include "foundation/Platform.h"

#include <shlobj.h>

#include <array>
#include <cstddef>

namespace VorraneLog {

namespace {

// The text of a call that fills a buffer and answers the length: the text's if it fits, else the
// size of the buffer to come with. Empty if the call answers 0.
template <typename Fill>
std::wstring filledBy(Fill const& fill) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        auto const length =
            static_cast<std::size_t>(fill(text.data(), static_cast<DWORD>(text.size())));
        if (length < text.size()) {
            text.resize(length);
            return text;
        }
        // The path of a program does not tell its size, only that it did not fit.
        text.resize(length > text.size() ? length : text.size() * 2);
    }
}

std::wstring environmentText(wchar_t const* name) {
    return filledBy([name](wchar_t* buffer, DWORD size) {
        return GetEnvironmentVariableW(name, buffer, size);
    });
}

std::wstring fullPath(std::wstring const& path) {
    return filledBy([&path](wchar_t* buffer, DWORD size) {
        return GetFullPathNameW(path.c_str(), size, buffer, nullptr);
    });
}

std::wstring programName() {
    auto const path = filledBy(
        [](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(nullptr, buffer, size); });
    auto const name = path.substr(path.find_last_of(L"\\/") + 1);
    return name.substr(0, name.rfind(L'.'));
}

std::wstring defaultFile() {
    std::array<wchar_t, MAX_PATH> folder{};
    auto const result =
        SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder.data());
    if (FAILED(result))
        return {};
    return std::wstring(folder.data()) + L"\\Vorrane\\Log\\" + programName() + L".log";
}

char levelOf(std::wstring const& text) {
    if (text.size() != 1 || text[0] < L'0' || text[0] > L'7')
        return LogConfiguration::defaultLevel;
    return static_cast<char>(text[0] - L'0');
}

} // namespace

LogConfiguration readLogConfiguration() {
    LogConfiguration configuration;
    configuration.level = levelOf(environmentText(L"VORRANELOG_LEVEL"));
    // Made full at once: the host may change its working directory later.
    auto const file = environmentText(L"VORRANELOG_FILE");
    configuration.file = file.empty() ? defaultFile() : fullPath(file);
    return configuration;
}

} // namespace VorraneLog
