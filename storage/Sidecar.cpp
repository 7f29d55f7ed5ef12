#include "vrUtils/Storage/Sidecar.h"

#include "foundation/Handle.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "storage/MatchingStack.h"

#include <optional>
#include <regex>

namespace vrUtils::Storage {

namespace {

// What makes an entry no plain file.
constexpr DWORD excludedAttributes =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY |
    FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_SPARSE_FILE | FILE_ATTRIBUTE_REPARSE_POINT |
    FILE_ATTRIBUTE_OFFLINE | FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_VIRTUAL;

std::wregex compile(std::wstring const& expression) {
    return std::wregex(expression, std::regex::ECMAScript | std::regex::icase);
}

// A backslash and a digit give way to the capture of that number. What is put in is not looked at
// again, and a backslash before anything else stays by itself: `\\1` is a backslash and a capture.
std::wstring fillPlaceholders(std::wstring const& name, std::wsmatch const& captures) {
    std::wstring filled;
    std::size_t position = 0;
    for (auto backslash = name.find(L'\\'); backslash < name.size() - 1;
         backslash = name.find(L'\\', position)) {
        filled.append(name, position, backslash - position);
        auto const next = name[backslash + 1];
        auto const digit = static_cast<std::size_t>(next - L'0');
        if (next >= L'0' && next <= L'9' && digit < captures.size() && captures[digit].matched) {
            filled.append(captures[digit].first, captures[digit].second);
            position = backslash + 2;
        } else {
            filled += L'\\';
            position = backslash + 1;
        }
    }
    return filled.append(name, position);
}

// The sidecar's name, or what it is to match; nothing if the movie's name does not match.
std::optional<std::wstring> sidecarNameOf(
    std::wstring const& movieFile, std::wstring const& regex, std::wstring const& sidecarName) {
    std::optional<std::wstring> name;
    onMatchingStack(regex, movieFile.size(), [&] {
        std::wsmatch captures;
        if (std::regex_match(movieFile, captures, compile(regex)))
            name = fillPlaceholders(sidecarName, captures);
    });
    return name;
}

bool isPlainFile(WIN32_FIND_DATAW const& entry) {
    return entry.cFileName[0] != L'.' && (entry.dwFileAttributes & excludedAttributes) == 0;
}

// The first entry that matches, in the order of the file system; empty if none does.
std::wstring
firstMatch(std::wregex const& expression, std::wstring const& folder, std::wstring const& pattern) {
    std::wstring candidate;
    WIN32_FIND_DATAW entry;
    FindOwner const search(FindFirstFileW((folder + pattern).c_str(), &entry));
    if (!search)
        return candidate;
    do {
        if (!isPlainFile(entry) || !std::regex_match(entry.cFileName, expression))
            continue;
        if (candidate.empty())
            candidate = entry.cFileName;
        else
            VL_WriteLog(
                LogLevel::warning, logModule, L"Ambiguous sidecar could be [%s] or [%s]",
                candidate.c_str(), entry.cFileName);
    } while (FindNextFileW(search.get(), &entry));
    return candidate;
}

std::wstring found(std::wstring sidecar) {
    VL_WriteLog(LogLevel::trace, logModule, L"Found sidecar [%s]", sidecar.c_str());
    return sidecar;
}

std::wstring findSidecar(
    std::wstring const& movieFile, std::wstring const& regex, std::wstring const& folder,
    std::wstring const& sidecarName, std::wstring const& searchPattern) {
    auto const name = sidecarNameOf(movieFile, regex, sidecarName);
    if (!name) {
        VL_WriteLog(
            LogLevel::failure, logModule,
            L"Movie file [%s] failed to match regular expression [%s]", movieFile.c_str(),
            regex.c_str());
        return {};
    }
    VL_WriteLog(
        LogLevel::trace, logModule, L"Searching for sidecar file [%s] in [%s]", name->c_str(),
        folder.c_str());
    auto exact = folder + *name;
    if (GetFileAttributesW(exact.c_str()) != INVALID_FILE_ATTRIBUTES)
        return found(std::move(exact));

    std::wstring candidate;
    onMatchingStack(
        *name, MAX_PATH, [&] { candidate = firstMatch(compile(*name), folder, searchPattern); });
    if (candidate.empty()) {
        VL_WriteLog(
            LogLevel::warning, logModule, L"Failed to find matching sidecar in [%s]",
            folder.c_str());
        return {};
    }
    return found(folder + candidate);
}

} // namespace

std::wstring FindSidecarFile(
    std::wstring const& movieFile, std::wstring const& regex, std::wstring const& folder,
    std::wstring const& sidecarName, std::wstring const& searchPattern) {
    try {
        return findSidecar(movieFile, regex, folder, sidecarName, searchPattern);
    } catch (...) {
        VL_WriteLog(
            LogLevel::failure, logModule, L"Failed to parse sidecar regex [%s]", regex.c_str());
        return {};
    }
}

} // namespace vrUtils::Storage
