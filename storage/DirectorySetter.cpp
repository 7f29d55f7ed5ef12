#include "vrUtils/Storage/DirectorySetter.h"

#include "foundation/Log.h"
#include "foundation/Message.h"
#include "foundation/Platform.h"

namespace vrUtils::Storage {

namespace {

// A directory that does not fit answers with the size that it needs, and may have changed when it
// is asked again. Empty if there is none to be had.
std::wstring workingDirectory() {
    std::wstring directory(MAX_PATH, L'\0');
    for (;;) {
        auto const size = static_cast<DWORD>(directory.size());
        auto const needed = GetCurrentDirectoryW(size, directory.data());
        directory.resize(needed);
        if (needed < size)
            return directory;
    }
}

} // namespace

DirectorySetter::DirectorySetter(std::wstring const& directory, std::wstring const& logModule)
    : m_savedDirectory(workingDirectory()), m_logModule(logModule) {
    _setDirectory(directory);
}

DirectorySetter::DirectorySetter(DirectorySetter const&) = default;

DirectorySetter& DirectorySetter::operator=(DirectorySetter const&) = default;

DirectorySetter::~DirectorySetter() { _setDirectory(m_savedDirectory); }

void DirectorySetter::_setDirectory(std::wstring const& directory) const noexcept {
    if (SetCurrentDirectoryW(directory.c_str()))
        return;
    auto const error = GetLastError();
    try {
        logComposed(
            LogLevel::warning, m_logModule,
            composeMessage(
                L"Failed to set directory to \"", directory, L"\" Error code : ", error));
    } catch (...) {
        // No memory for the line.
    }
}

} // namespace vrUtils::Storage
