#ifndef TESTS_VRTOOL_CARRIED_H
#define TESTS_VRTOOL_CARRIED_H

#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/FileTransfer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

namespace test {

inline std::uint64_t lastWriteOf(std::wstring const& file) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data);
    return std::uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 |
           data.ftLastWriteTime.dwLowDateTime;
}

inline void setLastWrite(std::wstring const& file, std::uint64_t ticks) {
    OwnedHandle const handle(CreateFileW(
        file.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, 0, nullptr));
    FILETIME const time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SetFileTime(handle.get(), nullptr, nullptr, &time);
}

// Some moment in 2024, which no file that a test writes has by itself.
inline constexpr std::uint64_t someTime = 133'500'000'012'345'678;

// Parts of a transfer in the test itself, where platform calls can be made to fail: from the folder
// "from" to the folder "to".
class CarriedFiles : public testing::Test {
  protected:
    CarriedFiles() { scratch.makeFolder(L"to"); }

    // A source in the folder "from", with a time of its own.
    std::wstring source(std::wstring const& name, std::string_view bytes) const {
        auto path = scratch.write(L"from\\" + name, bytes);
        setLastWrite(path, someTime);
        return path;
    }

    TransferOutcome carry(std::wstring const& name) {
        auto const file = vr::Path::file(scratch.file(L"from\\" + name));
        return transferFile({file, name, {}}, setting);
    }

    bool isLeft(std::wstring const& name) const { return scratch.exists(L"to\\" + name); }

    std::string target(std::wstring const& name) const { return scratch.read(L"to\\" + name); }

    std::wstring quotedTarget(std::wstring const& name) const {
        return L'"' + scratch.file(L"to\\" + name) + L'"';
    }

    ScratchFolder const scratch;
    Console console;
    CancelKey const key;
    TransferDestination const destination = transferDestination(scratch.file(L"to"));
    TransferSetting setting{console, key,       destination,  false,
                            false,   L"server", L"signature", std::vector<unsigned char>(4),
                            {}};
};

} // namespace test

#endif
