#include "storage/DirectoryRemoval.h"

namespace vrUtils::Storage {

DWORD DirectoryRemoval::run() {
    enter();
    while (!m_levels.empty()) {
        auto const error = findEntry() ? removeEntry() : leave();
        if (error != NO_ERROR)
            return error;
    }
    return NO_ERROR;
}

// A folder that cannot be searched counts as removed: it is not entered.
bool DirectoryRemoval::enter() {
    auto const length = m_path.size();
    m_path += L"\\*.*";
    FindOwner search(FindFirstFileW(m_path.c_str(), &m_entry));
    m_path.resize(length);
    if (!search)
        return false;
    m_levels.push_back({std::move(search), length});
    m_entered = true;
    return true;
}

// The search of a folder begins with an entry in hand.
bool DirectoryRemoval::findEntry() {
    if (m_entered) {
        m_entered = false;
        return true;
    }
    return FindNextFileW(m_levels.back().search.get(), &m_entry) != FALSE;
}

DWORD DirectoryRemoval::removeEntry() {
    if (m_entry.cFileName[0] == L'.')
        return NO_ERROR;
    auto const isFolder = (m_entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isFolder && !m_recursive) {
        m_subfolderStays = true;
        return NO_ERROR;
    }

    auto const length = m_path.size();
    m_path += L'\\';
    m_path += m_entry.cFileName;
    if (isFolder && enter())
        return NO_ERROR;
    auto const error = isFolder ? NO_ERROR : removeFile();
    m_path.resize(length);
    return error;
}

// Read-only files go too.
DWORD DirectoryRemoval::removeFile() {
    if (!SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL))
        return GetLastError();
    if (!DeleteFileW(m_path.c_str()))
        return GetLastError();
    return NO_ERROR;
}

// Called when the search of the innermost level found no more.
DWORD DirectoryRemoval::leave() {
    auto const searchError = GetLastError();
    // An open search would keep the folder.
    m_levels.pop_back();
    if (searchError != ERROR_NO_MORE_FILES)
        return searchError;
    if (m_subfolderStays)
        return NO_ERROR;

    if (!SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL))
        return GetLastError();
    if (!RemoveDirectoryW(m_path.c_str()))
        return GetLastError();
    if (!m_levels.empty())
        m_path.resize(m_levels.back().pathLength);
    return NO_ERROR;
}

} // namespace vrUtils::Storage
