#include "vrUtils/Storage/FolderPickers.h"

#include "foundation/Platform.h"
#include "foundation/Text.h"
#include "vrUtils/Storage/Exceptions.h"

#include <array>
#include <memory>

#include <shlobj.h>

namespace vrUtils::Storage {

namespace {

struct ReleaseInterface {
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};

template <typename Interface>
using InterfaceOwner = std::unique_ptr<Interface, ReleaseInterface>;

// The shell's item lists are freed by the shell's allocator.
struct FreeItemList {
    void operator()(ITEMIDLIST* items) const noexcept {
        IMalloc* allocator = nullptr;
        if (FAILED(SHGetMalloc(&allocator)))
            return;
        InterfaceOwner<IMalloc> const owner(allocator);
        allocator->Free(items);
    }
};

using ItemListOwner = std::unique_ptr<ITEMIDLIST, FreeItemList>;

ItemListOwner networkNeighbourhood() {
    ITEMIDLIST* items = nullptr;
    // Without one the dialog begins at the desktop.
    SHGetSpecialFolderLocation(nullptr, CSIDL_NETWORK, &items);
    return ItemListOwner(items);
}

ItemListOwner hostItems(std::wstring const& host) {
    auto unc = L"\\\\" + Strings::trimSlashes(host);
    IShellFolder* desktop = nullptr;
    SHGetDesktopFolder(&desktop);
    InterfaceOwner<IShellFolder> const owner(desktop);
    ITEMIDLIST* items = nullptr;
    if (!desktop ||
        FAILED(desktop->ParseDisplayName(nullptr, nullptr, unc.data(), nullptr, &items, nullptr))) {
        auto const error = GetLastError();
        throw vrBadHostException(error, unc);
    }
    return ItemListOwner(items);
}

bool browse(
    bool forComputer, std::wstring const& host, std::wstring const& title, std::wstring* result,
    HWND owner) {
    std::array<wchar_t, MAX_PATH> name{};
    BROWSEINFOW dialog{};
    dialog.hwndOwner = owner;
    dialog.lpszTitle = title.c_str();
    dialog.ulFlags = forComputer ? BIF_BROWSEFORCOMPUTER : BIF_RETURNONLYFSDIRS;
    dialog.pszDisplayName = name.data();
    auto root = networkNeighbourhood();
    if (!host.empty())
        root = hostItems(host);
    dialog.pidlRoot = root.get();

    ItemListOwner const chosen(SHBrowseForFolderW(&dialog));
    if (!chosen)
        return false;
    if (!forComputer)
        SHGetPathFromIDListW(chosen.get(), name.data());

    std::wstring text = name.data();
    if (!forComputer && (text.empty() || text.back() != L'\\'))
        text += L'\\';
    *result = std::move(text);
    return true;
}

} // namespace

bool BrowseForFolder(
    std::wstring const& host, std::wstring const& title, std::wstring* result, HWND owner) {
    return browse(false, host, title, result, owner);
}

bool BrowseForComputer(std::wstring const& title, std::wstring* result, HWND owner) {
    return browse(true, {}, title, result, owner);
}

} // namespace vrUtils::Storage
