#ifndef TESTS_VRTOOL_WORKINGFOLDER_H
#define TESTS_VRTOOL_WORKINGFOLDER_H

#include "foundation/Platform.h"

#include <array>
#include <string>

namespace test {

// The program that is started looks for relative paths here, until the folder of before is back.
class WorkingFolder {
  public:
    explicit WorkingFolder(std::wstring const& path) {
        GetCurrentDirectoryW(MAX_PATH, m_before.data());
        SetCurrentDirectoryW(path.c_str());
    }

    WorkingFolder(WorkingFolder const&) = delete;
    WorkingFolder& operator=(WorkingFolder const&) = delete;
    ~WorkingFolder() { SetCurrentDirectoryW(m_before.data()); }

  private:
    std::array<wchar_t, MAX_PATH> m_before{};
};

} // namespace test

#endif
