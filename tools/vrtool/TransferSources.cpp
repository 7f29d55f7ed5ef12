#include "tools/vrtool/TransferSources.h"

#include "tools/vrtool/ClosedFolder.h"
#include "tools/vrtool/FolderWalk.h"
#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TargetLock.h"
#include "tools/vrtool/TransferFailure.h"
#include "tools/vrtool/TransferMessage.h"
#include "tools/vrtool/TransferReports.h"
#include "tools/vrtool/WholeFile.h"

#include <algorithm>
#include <set>

namespace {

// What stands above the last folder: that one goes along, unless it is a drive's or a share's root.
std::size_t lengthAbove(vr::Path const& folder) {
    auto const& parts = folder.components();
    auto const top = (parts.rootAndDrive() + parts.firstFolder()).size();
    auto const whole = parts.folderPath();
    auto const above = whole.find_last_of(L'\\', whole.size() - 2);
    return above == std::wstring::npos ? 0 : std::max(top, above + 1);
}

struct HasNoCase {
    bool operator()(std::wstring const& left, std::wstring const& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

using Names = std::set<std::wstring, HasNoCase>;

void addTraces(Names& traces, vr::Path const& file, bool makesReports) {
    traces.insert(partOf(file).components().wholePath());
    traces.insert(lockFileOf(file).components().wholePath());
    if (makesReports && hasReport(file))
        traces.insert(madeReport(file).components().wholePath());
    try {
        traces.insert(messageFile(file).components().wholePath());
    } catch (TransferFailure const&) {
        // Its folder's name is too long for a message.
    }
}

} // namespace

std::vector<TransferSource> transferSources(std::wstring const& argument) {
    auto const text = fullPath(argument);
    auto const file = vr::Path::file(text);
    auto const name = file.components().fullName();
    auto const attributes = GetFileAttributesW(text.c_str());
    auto const error = GetLastError();
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return {{file, name.empty() ? text : name, systemText(error)}};
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return {{file, name, {}}};

    auto const folder = closedFolder(text);
    auto const above = lengthAbove(folder);
    std::vector<TransferSource> sources;
    for (auto& found : filesBelow(folder)) {
        auto const whole = found.path.components().wholePath();
        sources.push_back({std::move(found.path), whole.substr(above), std::move(found.failure)});
    }
    return sources;
}

std::vector<TransferSource> withoutTraces(std::vector<TransferSource> sources, bool makesReports) {
    Names traces;
    for (auto const& source : sources)
        if (source.failure.empty())
            addTraces(traces, source.file, makesReports);

    auto const isTrace = [&](TransferSource const& source) {
        return traces.count(source.file.components().wholePath()) != 0;
    };
    sources.erase(std::remove_if(sources.begin(), sources.end(), isTrace), sources.end());
    return sources;
}
