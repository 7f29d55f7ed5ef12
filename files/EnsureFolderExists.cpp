#include "vrUtils/Files/FileQueries.h"

#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "vrUtils/vrException.h"

#include <shlobj.h>

namespace vrUtils::Files {

void ensureFolderExists(vr::Path const& path) {
    if (FileExists(path))
        return;

    auto const text = path.components().wholePath();
    auto const error = SHCreateDirectoryExW(nullptr, text.c_str(), nullptr);
    if (error != ERROR_SUCCESS)
        throw vrException(
            __LINE__,
            composeMessage(L"SHCreateDirectoryEx failed on \"", text, L"\" - error ", error));
}

} // namespace vrUtils::Files
