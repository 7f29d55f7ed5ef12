#include "tools/vrtool/WholeFile.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"
#include "vrUtils/Files.h"

#include <vector>

WholeFile::WholeFile(vr::Path const& target)
    : m_target(target),
      m_part(vr::Path::file(target.components().wholePath() + L".part")),
      m_partDeleter(m_part) {}

void WholeFile::commit() {
    auto const target = m_target.str();
    if (!MoveFileExW(m_part.str().c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        auto const error = GetLastError();
        throw TransferFailure(
            L"cannot take the place of \"" + target + L"\": " + systemText(error));
    }
    m_partDeleter.SetFile({});
}

void saveWhole(std::string const& text, vr::Path const& target) {
    WholeFile file(target);
    vrUtils::Files::SaveSmallFile(std::vector<char>(text.begin(), text.end()), file.part());
    file.commit();
}
