#include "tests/vrtool/KeptKey.h"

#include "tests/support/OwnedHandle.h"

#include <gtest/gtest.h>

namespace test {

namespace {

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using OwnedKey = std::unique_ptr<HKEY__, KeyCloser>;

// Null if there is no such key.
OwnedKey open(HKEY hive, std::wstring const& path) {
    HKEY key = nullptr;
    RegOpenKeyExW(hive, path.c_str(), 0, KEY_ALL_ACCESS, &key);
    return OwnedKey(key);
}

OwnedKey make(HKEY hive, std::wstring const& path) {
    HKEY key = nullptr;
    RegCreateKeyExW(hive, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    return OwnedKey(key);
}

std::wstring topmostMissing(HKEY hive, std::wstring const& path) {
    for (auto end = path.find(L'\\'); end != path.npos; end = path.find(L'\\', end + 1))
        if (!open(hive, path.substr(0, end)))
            return path.substr(0, end);
    return path;
}

} // namespace

KeptKey::KeptKey(HKEY hive, std::wstring path)
    : m_hive(hive),
      m_path(std::move(path)),
      m_top(topmostMissing(m_hive, m_path)),
      m_wasThere(open(m_hive, m_path) != nullptr) {
    if (!m_wasThere)
        return;
    auto const copy = open(HKEY_CURRENT_USER, m_copy.path());
    auto const status = RegCopyTreeW(m_hive, m_path.c_str(), copy.get());
    if (status != ERROR_SUCCESS)
        throw platformFailure(static_cast<DWORD>(status), "cannot copy a key of the machine");
}

KeptKey::~KeptKey() {
    remove();
    LSTATUS status = ERROR_SUCCESS;
    if (m_wasThere)
        status = RegCopyTreeW(HKEY_CURRENT_USER, m_copy.path().c_str(), make(m_hive, m_path).get());
    else
        RegDeleteTreeW(m_hive, m_top.c_str());
    if (status != ERROR_SUCCESS)
        ADD_FAILURE() << "a key of the machine cannot be put back, error " << status;
}

void KeptKey::remove() const { RegDeleteTreeW(m_hive, m_path.c_str()); }

} // namespace test
