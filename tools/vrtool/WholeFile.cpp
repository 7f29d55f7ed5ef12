#include "tools/vrtool/WholeFile.h"

#include "tools/vrtool/FileAccess.h"
#include "tools/vrtool/FileState.h"
#include "tools/vrtool/TransferFailure.h"

WholeFile::WholeFile(vr::Path const& target)
    : m_target(target), m_part(partOf(target)), m_partDeleter(m_part) {}

void WholeFile::commit(std::uint64_t size) { rename(size, MOVEFILE_REPLACE_EXISTING); }

void WholeFile::commitNew(std::uint64_t size) { rename(size, 0); }

void WholeFile::rename(std::uint64_t size, std::uint32_t flags) {
    requireWhole(m_part, size);
    auto const part = m_part.str();
    auto const target = m_target.str();
    if (!MoveFileExW(part.c_str(), target.c_str(), flags)) {
        auto const error = GetLastError();
        throw TransferFailure(L"cannot take the place of", m_target, error);
    }
    m_partDeleter.SetFile({});
}

vr::Path partOf(vr::Path const& target) {
    return vr::Path::file(target.components().wholePath() + L".part");
}

void requireWhole(vr::Path const& file, std::uint64_t size) {
    auto const state = stateOf(file);
    if (!state || state->size != size)
        throw TransferFailure(L"not all of it has arrived at " + quoted(file));
}

void saveWhole(std::string const& text, vr::Path const& target) {
    WholeFile file(target);
    writePiece(openToWrite(file.part()), text.data(), text.size());
    file.commit(text.size());
}
