#ifndef TESTS_VRTOOL_WORKINGFOLDER_H
#define TESTS_VRTOOL_WORKINGFOLDER_H

#include "foundation/Platform.h"

#include <string>

namespace test {

// The program that is started looks for relative paths here.
class WorkingFolder {
  public:
    explicit WorkingFolder(std::wstring const& path) { SetCurrentDirectoryW(path.c_str()); }

    WorkingFolder(WorkingFolder const&) = delete;
    WorkingFolder& operator=(WorkingFolder const&) = delete;
    ~WorkingFolder() { SetCurrentDirectoryW(L"C:\\"); }
};

} // namespace test

#endif
