#ifndef TESTS_VRTOOL_ANSWERSFILE_H
#define TESTS_VRTOOL_ANSWERSFILE_H

#include "foundation/Platform.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"

#include <string_view>

namespace test {

// Standard input is a file of these lines for the life of the object.
class AnswersFile {
  public:
    explicit AnswersFile(std::string_view lines)
        : m_file(CreateFileW(
              m_folder.write(L"answers", lines).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
              OPEN_EXISTING, 0, nullptr)) {
        SetStdHandle(STD_INPUT_HANDLE, m_file.get());
    }

    AnswersFile(AnswersFile const&) = delete;
    AnswersFile& operator=(AnswersFile const&) = delete;
    ~AnswersFile() { SetStdHandle(STD_INPUT_HANDLE, m_before); }

  private:
    ScratchFolder const m_folder;
    HANDLE m_before = GetStdHandle(STD_INPUT_HANDLE);
    OwnedHandle m_file;
};

} // namespace test

#endif
