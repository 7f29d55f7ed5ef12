#include "tests/support/ScratchShare.h"

#include "foundation/Platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace test {

namespace {

// The platform of the tests serves `\\host\share` from a folder of its configuration, which it names
// in the environment behind a prefix of four characters.
std::filesystem::path folderOfHost(std::wstring const& host) {
    auto const* const configuration = _wgetenv(L"WINECONFIGDIR");
    if (!configuration)
        throw std::system_error(
            ERROR_BAD_NET_NAME, std::system_category(), "this platform serves no shares of tests");
    return std::filesystem::path(configuration + 4) / L"dosdevices" / L"unc" / host;
}

// No name service has a name that ends like this.
std::wstring newHost() {
    static std::atomic<unsigned> number{0};
    return L"vrtest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number) +
           L".invalid";
}

} // namespace

ScratchShare::ScratchShare() : m_host(newHost()) {
    auto const folder = folderOfHost(m_host);
    // What a process of this id has left behind.
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / L"share");
}

ScratchShare::~ScratchShare() {
    std::error_code error;
    std::filesystem::remove_all(folderOfHost(m_host), error);
    if (error)
        ADD_FAILURE() << "scratch share: " << error.message();
}

} // namespace test
