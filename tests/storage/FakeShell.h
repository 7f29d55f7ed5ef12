#ifndef TESTS_STORAGE_FAKESHELL_H
#define TESTS_STORAGE_FAKESHELL_H

// A shell of the tests' own in place of the platform's: network neighbourhood, hosts, dialog and
// allocator. Of what it hands out it knows what has been given back:
//
//     test::FakeShell shell;
//     shell.chooses(L"C:\\Media");
//     EXPECT_TRUE(BrowseForFolder({}, L"Where to?", &result, nullptr));
//     EXPECT_TRUE(shell.hasAllBack());
//
// Without `chooses` the user cancels.

#include "foundation/Platform.h"
#include "tests/support/ImportHook.h"

#include <shlobj.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test {

// What all of the shell's objects have in common. The counts tell what a caller has forgotten.
template <typename Interface>
class CountedObject : public Interface {
  public:
    // How many references are in other hands.
    int references() const noexcept { return m_references; }

    Interface* handOut() noexcept {
        ++m_references;
        return this;
    }

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return static_cast<ULONG>(++m_references); }
    ULONG WINAPI Release() override { return static_cast<ULONG>(--m_references); }

  protected:
    ~CountedObject() = default;

  private:
    int m_references = 0;
};

// Item lists by what they stand for, until they are freed.
class ItemLists {
  public:
    ITEMIDLIST* make(std::wstring const& name) {
        auto list = std::make_unique<ITEMIDLIST>();
        auto* const address = list.get();
        m_lists[address] = {std::move(list), name};
        return address;
    }

    // What the list stands for; nothing if there is no such list, any more or at all.
    std::optional<std::wstring> nameOf(ITEMIDLIST const* list) const {
        auto const found = m_lists.find(list);
        return found == m_lists.end() ? std::nullopt : std::optional(found->second.name);
    }

    // Whether it was a list.
    bool free(void* list) { return m_lists.erase(static_cast<ITEMIDLIST*>(list)) == 1; }

    bool empty() const noexcept { return m_lists.empty(); }

  private:
    struct Entry {
        std::unique_ptr<ITEMIDLIST> list;
        std::wstring name;
    };

    std::map<ITEMIDLIST const*, Entry> m_lists;
};

class FakeAllocator final : public CountedObject<IMalloc> {
  public:
    explicit FakeAllocator(ItemLists& lists) : m_lists(lists) {}

    // Whether all that was freed were lists that had not been freed before.
    bool wasSound() const noexcept { return m_sound; }

    void* WINAPI Alloc(SIZE_T) override { return nullptr; }
    void* WINAPI Realloc(void*, SIZE_T) override { return nullptr; }
    void WINAPI Free(void* memory) override { m_sound = m_lists.free(memory) && m_sound; }
    SIZE_T WINAPI GetSize(void*) override { return 0; }
    int WINAPI DidAlloc(void*) override { return -1; }
    void WINAPI HeapMinimize() override {}

  private:
    ItemLists& m_lists;
    bool m_sound = true;
};

class FakeDesktop final : public CountedObject<IShellFolder> {
  public:
    explicit FakeDesktop(ItemLists& lists) : m_lists(lists) {}

    // From now on there is no host; the platform does not set its last error for it.
    void refuse(HRESULT result) { m_result = result; }

    // The names that were parsed, in order.
    std::vector<std::wstring> const& parsed() const noexcept { return m_parsed; }

    // Whether nothing but the name and the place for the list was passed.
    bool wasAskedCleanly() const noexcept { return m_clean; }

    HRESULT WINAPI ParseDisplayName(
        HWND owner, IBindCtx* context, wchar_t* name, ULONG* eaten, ITEMIDLIST** list,
        ULONG* attributes) override {
        m_parsed.emplace_back(name);
        m_clean = m_clean && !owner && !context && !eaten && !attributes;
        if (SUCCEEDED(m_result))
            *list = m_lists.make(name);
        return m_result;
    }

    HRESULT WINAPI EnumObjects(HWND, SHCONTF, IEnumIDList**) override { return E_NOTIMPL; }
    HRESULT WINAPI BindToObject(LPCITEMIDLIST, IBindCtx*, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI BindToStorage(LPCITEMIDLIST, IBindCtx*, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI CompareIDs(LPARAM, LPCITEMIDLIST, LPCITEMIDLIST) override { return E_NOTIMPL; }
    HRESULT WINAPI CreateViewObject(HWND, REFIID, void**) override { return E_NOTIMPL; }
    HRESULT WINAPI GetAttributesOf(UINT, LPCITEMIDLIST*, SFGAOF*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetUIObjectOf(HWND, UINT, LPCITEMIDLIST*, REFIID, UINT*, void**) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI GetDisplayNameOf(LPCITEMIDLIST, SHGDNF, STRRET*) override { return E_NOTIMPL; }
    HRESULT WINAPI SetNameOf(HWND, LPCITEMIDLIST, wchar_t const*, SHGDNF, LPITEMIDLIST*) override {
        return E_NOTIMPL;
    }

  private:
    ItemLists& m_lists;
    HRESULT m_result = S_OK;
    std::vector<std::wstring> m_parsed;
    bool m_clean = true;
};

class FakeShell {
  public:
    static constexpr wchar_t network[] = L"the network";

    // What the dialog was told.
    struct Dialog {
        HWND owner;
        std::wstring title;
        UINT flags;
        // What its root item list stands for; nothing if it has none.
        std::optional<std::wstring> root;
        // Whether all else was zero, and the place for the name was there and empty.
        bool wasOtherwiseZero;
    };

    // From now on the user chooses this.
    // @param path what the choice's path is; empty for a choice that has none
    void chooses(std::wstring const& path) { m_choice = path; }

    // What the dialog shows as the choice's name; that of the tests if nothing else is said.
    void shows(std::wstring const& name) { m_displayName = name; }

    FakeDesktop& desktop() noexcept { return m_desktop; }

    // The dialogs so far, in order.
    std::vector<Dialog> const& dialogs() const noexcept { return m_dialogs; }

    // The special folders that were asked for, in order; -1 for one with a window.
    std::vector<int> const& specialFolders() const noexcept { return m_specialFolders; }

    unsigned pathsAsked() const noexcept { return m_path.calls(); }

    // Whether each list was freed once, and each object released as often as it was handed out.
    bool hasAllBack() const noexcept {
        return m_lists.empty() && m_allocator.wasSound() && m_allocator.references() == 0 &&
               m_desktop.references() == 0;
    }

  private:
    HRESULT specialFolder(HWND window, int folder, ITEMIDLIST** list) {
        m_specialFolders.push_back(window ? -1 : folder);
        *list = m_lists.make(network);
        return S_OK;
    }

    ITEMIDLIST* browse(BROWSEINFOW const& info) {
        m_dialogs.push_back(
            {info.hwndOwner, info.lpszTitle, info.ulFlags, m_lists.nameOf(info.pidlRoot),
             !info.lpfn && !info.lParam && !info.iImage && info.pszDisplayName &&
                 !*info.pszDisplayName});
        if (!m_choice)
            return nullptr;
        info.pszDisplayName[m_displayName.copy(info.pszDisplayName, MAX_PATH - 1)] = L'\0';
        return m_lists.make(*m_choice);
    }

    BOOL pathOf(ITEMIDLIST const* list, wchar_t* path) const {
        auto const name = m_lists.nameOf(list).value_or(std::wstring());
        path[name.copy(path, MAX_PATH - 1)] = L'\0';
        return !name.empty();
    }

    ItemLists m_lists;
    FakeAllocator m_allocator{m_lists};
    FakeDesktop m_desktop{m_lists};
    std::optional<std::wstring> m_choice;
    std::wstring m_displayName = L"the choice";
    std::vector<Dialog> m_dialogs;
    std::vector<int> m_specialFolders;
    ImportHook<decltype(SHGetSpecialFolderLocation)> m_special{
        "SHGetSpecialFolderLocation", [this](HWND window, int folder, ITEMIDLIST** list) {
            return specialFolder(window, folder, list);
        }};
    ImportHook<decltype(SHGetDesktopFolder)> m_desktopFolder{
        "SHGetDesktopFolder", [this](IShellFolder** desktop) {
            *desktop = m_desktop.handOut();
            return S_OK;
        }};
    ImportHook<decltype(SHGetMalloc)> m_malloc{"SHGetMalloc", [this](IMalloc** allocator) {
                                                   *allocator = m_allocator.handOut();
                                                   return S_OK;
                                               }};
    ImportHook<decltype(SHBrowseForFolderW)> m_browse{
        "SHBrowseForFolderW", [this](BROWSEINFOW* info) { return browse(*info); }};
    ImportHook<decltype(SHGetPathFromIDListW)> m_path{
        "SHGetPathFromIDListW",
        [this](ITEMIDLIST const* list, wchar_t* path) { return pathOf(list, path); }};
};

} // namespace test

#endif
