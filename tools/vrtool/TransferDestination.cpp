#include "tools/vrtool/TransferDestination.h"

#include "tools/vrtool/ClosedFolder.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"
#include "vrUtils/Files.h"

#include <algorithm>
#include <iterator>

namespace {

SrvrParam serverOf(vr::Path const& folder) {
    auto const& parts = folder.components();
    SrvrParam server;
    server.host = parts.root();
    putText(server.folder, parts.root().empty() ? parts.drive() : parts.firstFolder());
    return server;
}

} // namespace

TransferDestination transferDestination(std::wstring const& argument) {
    TransferDestination destination;
    destination.folder = closedFolder(fullPath(argument));
    destination.onThisMachine = vrUtils::Files::isPathToThisMachine(destination.folder);
    destination.local = closedFolder(vrUtils::Files::uncToLocalPath(destination.folder).str());
    destination.server = serverOf(destination.local);
    return destination;
}

void putText(wchar_t (&array)[260], std::wstring const& text) {
    if (text.size() >= std::size(array))
        throw TransferFailure(L"the name is too long: \"" + text + L"\"");
    *std::copy(text.begin(), text.end(), array) = L'\0';
}
