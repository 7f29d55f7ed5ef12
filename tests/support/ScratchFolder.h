#ifndef TESTS_SUPPORT_SCRATCHFOLDER_H
#define TESTS_SUPPORT_SCRATCHFOLDER_H

// An empty folder of a test's own below the temporary folder. It goes with the object, and with all
// that is in it, read-only files too. What cannot be removed then is a handle that was left open,
// and fails the test.
//
//     test::ScratchFolder folder;
//     auto const clip = folder.write(L"day 1\\clip.wav", "RIFF");
//     ...
//     EXPECT_EQ("RIFF", folder.read(L"day 1\\clip.wav"));
//
// Names are relative to the folder, with backslashes, of any characters and any length. The paths
// that come out are plain ones, as a user would type them. Failed preparations throw
// std::system_error.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace test {

class ScratchFolder {
  public:
    ScratchFolder();
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;
    ~ScratchFolder();

    // The folder, with no backslash at the end.
    std::wstring const& path() const noexcept { return m_path; }

    // The path of something in the folder, which need not exist.
    std::wstring file(std::wstring const& name) const;

    // Makes a folder, and those above it as far as they are missing; gives its path.
    std::wstring makeFolder(std::wstring const& name) const;

    // Makes a file of these bytes, or replaces one, and makes its folders as far as they are
    // missing; gives its path.
    std::wstring write(std::wstring const& name, std::string_view bytes) const;
    std::wstring write(std::wstring const& name, std::vector<unsigned char> const& bytes) const;

    // All bytes of a file.
    std::string read(std::wstring const& name) const;

    // Whether there is a file or a folder of this name.
    bool exists(std::wstring const& name) const;

    // The names of the files and folders directly in the folder or in one below it, sorted.
    std::vector<std::wstring> names(std::wstring const& name = {}) const;

  private:
    std::wstring m_path;
};

} // namespace test

#endif
