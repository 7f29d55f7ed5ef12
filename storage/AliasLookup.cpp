#include "vrUtils/Storage/AliasLookup.h"

#include "foundation/Text.h"
#include "storage/PathAliasTable.h"
#include "vrUtils/Files/AliasSubstitution.h"
#include "vrUtils/Files/FileQueries.h"

namespace vrUtils {

namespace {

// The look-up has always worked in a buffer of the platform's longest path.
constexpr std::size_t bufferSize = 260;

vr::Path detectedPath(std::string const& text) {
    return {Strings::narrowToWide(text), vr::Path::eDetect};
}

} // namespace

bool Files::FileExistsAllowingAliasSubstitution(vr::Path* path) {
    if (FileExists(*path))
        return true;
    auto text = Strings::toBackslashes(Strings::wideToNarrow(path->str()));
    // A path that was cut would name another file.
    if (text.size() < bufferSize && Storage::pathAliasTable().substitute(text))
        *path = detectedPath(text);
    return FileExists(*path);
}

bool Storage::FindFileAsAliasIfNecessary(vr::Path* path) {
    if (Files::FileExists(*path))
        return true;
    auto text = Strings::wideToNarrow(path->str()).substr(0, bufferSize);
    if (!pathAliasTable().substitute(text))
        return false;
    *path = detectedPath(text);
    return Files::FileExists(*path);
}

} // namespace vrUtils
