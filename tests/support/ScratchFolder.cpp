#include "tests/support/ScratchFolder.h"

#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace test {

namespace {

// Lifts the platform's limit of 260 characters.
std::wstring unlimited(std::wstring const& path) { return L"\\\\?\\" + path; }

std::wstring temporaryFolder() {
    wchar_t buffer[MAX_PATH + 1];
    DWORD const length = GetTempPathW(MAX_PATH + 1, buffer);
    return {buffer, length};
}

// Whether the folder was made; false if there is something of this name.
bool makeNewFolder(std::wstring const& path) {
    if (CreateDirectoryW(unlimited(path).c_str(), nullptr))
        return true;
    DWORD const error = GetLastError();
    if (error != ERROR_ALREADY_EXISTS)
        throw platformFailure(error, "cannot make the folder " + utf8(path));
    return false;
}

struct Entry {
    std::wstring name;
    DWORD attributes = 0;
};

std::vector<Entry> entriesOf(std::wstring const& folder) {
    WIN32_FIND_DATAW data;
    HANDLE const search = FindFirstFileW(unlimited(folder + L"\\*").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot list the folder " + utf8(folder));
    }
    std::vector<Entry> entries;
    do {
        std::wstring const name = data.cFileName;
        if (name != L"." && name != L"..")
            entries.push_back({name, data.dwFileAttributes});
    } while (FindNextFileW(search, &data));
    FindClose(search);
    return entries;
}

bool isFolderOfItsOwn(DWORD attributes) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) && !(attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

void removeTree(std::wstring const& path, DWORD attributes) {
    if (isFolderOfItsOwn(attributes))
        for (auto const& entry : entriesOf(path))
            removeTree(path + L"\\" + entry.name, entry.attributes);

    auto const target = unlimited(path);
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);
    BOOL const removed = attributes & FILE_ATTRIBUTE_DIRECTORY ? RemoveDirectoryW(target.c_str())
                                                               : DeleteFileW(target.c_str());
    if (!removed) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot remove " + utf8(path));
    }
}

OwnedHandle openFile(std::wstring const& path, DWORD access, DWORD disposition) {
    HANDLE const handle = CreateFileW(
        unlimited(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot open " + utf8(path));
    }
    return OwnedHandle(handle);
}

} // namespace

ScratchFolder::ScratchFolder() {
    static std::atomic<unsigned> number{0};
    auto const stem =
        temporaryFolder() + L"vrUtilsTests-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    // A number is passed over if a process of this id has left its folder behind.
    do
        m_path = stem + std::to_wstring(++number);
    while (!makeNewFolder(m_path));
}

ScratchFolder::~ScratchFolder() {
    try {
        if (exists({}))
            removeTree(m_path, FILE_ATTRIBUTE_DIRECTORY);
    } catch (std::exception const& failure) {
        ADD_FAILURE() << "scratch folder: " << failure.what();
    }
}

std::wstring ScratchFolder::file(std::wstring const& name) const {
    return name.empty() ? m_path : m_path + L"\\" + name;
}

std::wstring ScratchFolder::makeFolder(std::wstring const& name) const {
    for (auto end = name.find(L'\\'); end != std::wstring::npos; end = name.find(L'\\', end + 1))
        makeNewFolder(file(name.substr(0, end)));
    makeNewFolder(file(name));
    return file(name);
}

std::wstring ScratchFolder::write(std::wstring const& name, std::string_view bytes) const {
    auto const folderEnd = name.rfind(L'\\');
    if (folderEnd != std::wstring::npos)
        makeFolder(name.substr(0, folderEnd));

    auto const path = file(name);
    auto const handle = openFile(path, GENERIC_WRITE, CREATE_ALWAYS);
    DWORD written = 0;
    if (!WriteFile(
            handle.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot write " + utf8(path));
    }
    return path;
}

std::wstring
ScratchFolder::write(std::wstring const& name, std::vector<unsigned char> const& bytes) const {
    return write(name, {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

std::string ScratchFolder::read(std::wstring const& name) const {
    auto const path = file(name);
    auto const handle = openFile(path, GENERIC_READ, OPEN_EXISTING);
    std::string bytes(GetFileSize(handle.get(), nullptr), '\0');
    DWORD count = 0;
    if (!ReadFile(handle.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr)) {
        DWORD const error = GetLastError();
        throw platformFailure(error, "cannot read " + utf8(path));
    }
    bytes.resize(count);
    return bytes;
}

bool ScratchFolder::exists(std::wstring const& name) const {
    return GetFileAttributesW(unlimited(file(name)).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::vector<std::wstring> ScratchFolder::names(std::wstring const& name) const {
    std::vector<std::wstring> names;
    for (auto& entry : entriesOf(file(name)))
        names.push_back(std::move(entry.name));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace test
