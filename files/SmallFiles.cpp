#include "vrUtils/Files/FileQueries.h"

#include "foundation/Message.h"
#include "foundation/Platform.h"
#include "vrUtils/Files/FileHandle.h"
#include "vrUtils/vrException.h"

namespace vrUtils::Files {

void SaveSmallFile(std::vector<char> const& bytes, vr::Path const& path) {
    FileHandleWriteNew file;
    file.Open(path);
    if (bytes.empty())
        return;

    // The platform wants somewhere to put the count; only the result of the call matters here.
    DWORD written = 0;
    if (!WriteFile(
            file.Handle(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
        auto const error = GetLastError();
        throw vrException(
            __LINE__, composeMessage(L"WriteFile failed on \"", path, L"\" - error ", error));
    }
}

void LoadSmallFile(vr::Path const& path, std::uint32_t maximum, std::vector<char>* bytes) {
    FileHandleRead file;
    file.Open(path);

    auto const length = FileLength(path);
    if (length > maximum)
        throw vrException(
            __LINE__, composeMessage(
                          L"LoadSmallFile failed on \"", path, L"\" because it's ", length,
                          L" length exceeds max permitted of ", maximum));

    bytes->resize(length);
    if (length == 0)
        return;

    DWORD count = 0;
    auto const succeeded =
        ReadFile(file.Handle(), bytes->data(), static_cast<DWORD>(length), &count, nullptr);
    auto const error = GetLastError();
    if (!succeeded)
        throw vrException(
            __LINE__, composeMessage(L"ReadFile failed on \"", path, L"\" - error ", error));

    // The file may have been cut since its length was taken.
    if (count < length)
        throw vrException(
            __LINE__, composeMessage(
                          L"ReadFile failed on \"", path, L"\", read ", count, L" bytes, expected ",
                          length, L" - error ", error));
}

} // namespace vrUtils::Files
