#include "vrUtils/Storage/TempFileDeleter.h"

#include "foundation/Platform.h"

namespace vrUtils::Storage {

TempFileDeleter::TempFileDeleter() = default;

TempFileDeleter::TempFileDeleter(vr::Path const& file) : m_file(file) {}

TempFileDeleter::TempFileDeleter(TempFileDeleter const&) = default;

TempFileDeleter& TempFileDeleter::operator=(TempFileDeleter const&) = default;

TempFileDeleter::~TempFileDeleter() {
    try {
        DeleteFileW(m_file.str().c_str());
    } catch (...) {
        // No memory for its name: the file stays.
    }
}

void TempFileDeleter::SetFile(vr::Path const& file) { m_file = file; }

} // namespace vrUtils::Storage
