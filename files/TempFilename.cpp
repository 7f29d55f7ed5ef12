#include "vrUtils/Files/FileQueries.h"

#include "foundation/Platform.h"

#include <rpc.h>

#include <memory>
#include <type_traits>

namespace vrUtils::Files {

namespace {

struct FreeRpcText {
    void operator()(RPC_WSTR text) const noexcept { RpcStringFreeW(&text); }
};

} // namespace

void GenerateTempFilename(std::wstring& result) {
    // The results of both calls are dropped: an identifier that is unique on this machine only is
    // good enough, and without any text the extension stands alone.
    UUID identifier{};
    UuidCreate(&identifier);
    RPC_WSTR text = nullptr;
    UuidToStringW(&identifier, &text);
    std::unique_ptr<std::remove_pointer_t<RPC_WSTR>, FreeRpcText> const owner(text);

    result.clear();
    if (owner)
        result = reinterpret_cast<wchar_t const*>(owner.get());
    result += L".tmp";
}

} // namespace vrUtils::Files
