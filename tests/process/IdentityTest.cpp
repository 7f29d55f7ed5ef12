#include "vrUtils/Process/Identity.h"

#include "foundation/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "vrUtils/vrException.h"

#include <psapi.h>
#include <shlobj.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Process;

namespace {

// The failure of the memory inquiry; the test fails if there is none.
vrException memoryFailure() {
    try {
        GetCurrentProcessMemoryInfo();
    } catch (vrException const& failure) {
        return failure;
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

// How the platform names the call in its newer form.
constexpr char memoryImport[] = "K32GetProcessMemoryInfo";

// The platform call copies its answer from a text.
template <std::size_t units>
BOOL answer(wchar_t const (&text)[units], wchar_t* buffer, DWORD* size) {
    std::copy(text, text + units, buffer);
    *size = units - 1;
    return TRUE;
}

} // namespace

static_assert(sizeof(AboutProcessMem) == 9 * sizeof(std::uint64_t));
static_assert(std::is_trivial_v<AboutProcessMem> && std::is_standard_layout_v<AboutProcessMem>);
static_assert(offsetof(AboutProcessMem, PageFaultCount) == 0);
static_assert(offsetof(AboutProcessMem, PeakWorkingSetSize) == 8);
static_assert(offsetof(AboutProcessMem, WorkingSetSize) == 16);
static_assert(offsetof(AboutProcessMem, QuotaPeakPagedPoolUsage) == 24);
static_assert(offsetof(AboutProcessMem, QuotaPagedPoolUsage) == 32);
static_assert(offsetof(AboutProcessMem, QuotaPeakNonPagedPoolUsage) == 40);
static_assert(offsetof(AboutProcessMem, QuotaNonPagedPoolUsage) == 48);
static_assert(offsetof(AboutProcessMem, PagefileUsage) == 56);
static_assert(offsetof(AboutProcessMem, PeakPagefileUsage) == 64);

TEST(Identity, ComputerNameIsThatOfThePlatform) {
    std::array<wchar_t, 16> name{};
    DWORD size = name.size();
    ASSERT_TRUE(::GetComputerNameW(name.data(), &size));

    EXPECT_EQ(name.data(), vrUtils::Process::GetComputerNameW());
}

TEST(Identity, ComputerNameIsAskedForWithRoomForFifteenCharacters) {
    DWORD asked = 0;
    test::ImportHook const hook("GetComputerNameW", [&](wchar_t* buffer, DWORD* size) -> BOOL {
        asked = *size;
        return answer(L"FIFTEEN-LETTERS", buffer, size);
    });

    EXPECT_EQ(L"FIFTEEN-LETTERS", vrUtils::Process::GetComputerNameW());

    EXPECT_EQ(16u, asked);
}

TEST(Identity, ComputerNameThatCannotBeReadIsEmpty) {
    test::ImportHook const hook("GetComputerNameW", [](wchar_t* buffer, DWORD* size) -> BOOL {
        answer(L"WRONG", buffer, size);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    });

    EXPECT_EQ(L"", vrUtils::Process::GetComputerNameW());
}

TEST(Identity, UserNameIsThatOfThePlatform) {
    std::array<wchar_t, 257> name{};
    DWORD size = name.size();
    ASSERT_TRUE(GetUserNameW(name.data(), &size));

    EXPECT_EQ(name.data(), GetCurrentUserName());
    EXPECT_NE(L"", GetCurrentUserName());
}

TEST(Identity, UserNameIsAskedForWithRoomFor256Characters) {
    DWORD asked = 0;
    test::ImportHook const hook("GetUserNameW", [&](wchar_t* buffer, DWORD* size) -> BOOL {
        asked = *size;
        std::fill(buffer, buffer + 256, L'u');
        buffer[256] = L'\0';
        return TRUE;
    });

    EXPECT_EQ(std::wstring(256, L'u'), GetCurrentUserName());

    EXPECT_EQ(257u, asked);
}

TEST(Identity, UserNameThatCannotBeReadIsEmpty) {
    test::ImportHook const hook("GetUserNameW", [](wchar_t* buffer, DWORD* size) -> BOOL {
        answer(L"wrong", buffer, size);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    });

    EXPECT_EQ(L"", GetCurrentUserName());
}

TEST(Identity, MemoryIsThatOfThisProcess) {
    auto const before = GetCurrentProcessMemoryInfo();

    // Written to, so that it counts.
    std::vector<char> const more(64 << 20, 'x');
    auto const after = GetCurrentProcessMemoryInfo();

    EXPECT_GT(before.WorkingSetSize, 0u);
    EXPECT_GT(before.PagefileUsage, 0u);
    EXPECT_GE(after.WorkingSetSize, before.WorkingSetSize + more.size() / 2);
    EXPECT_GE(after.PeakWorkingSetSize, after.WorkingSetSize);
}

TEST(Identity, MemoryIsReadOfTheOwnProcessWithTwoRights) {
    std::vector<DWORD> asked;
    test::ImportHook<decltype(OpenProcess)> const hook(
        "OpenProcess", [&](DWORD rights, BOOL inherited, DWORD id) {
            asked = {rights, static_cast<DWORD>(inherited), id};
            return hook.original()(rights, inherited, id);
        });

    GetCurrentProcessMemoryInfo();

    EXPECT_THAT(asked, testing::ElementsAre(0x410u, 0u, GetCurrentProcessId()));
}

TEST(Identity, EachMemoryFieldComesFromItsOwnSource) {
    DWORD asked = 0;
    test::ImportHook const hook(
        memoryImport, [&](HANDLE, PROCESS_MEMORY_COUNTERS* counters, DWORD size) -> BOOL {
            asked = size;
            *counters = {72,           0xFFFFFFFF,   0x200000002u, 0x300000003u, 0x400000004u,
                         0x500000005u, 0x600000006u, 0x700000007u, 0x800000008u, 0x900000009u};
            return TRUE;
        });

    auto const memory = GetCurrentProcessMemoryInfo();

    EXPECT_EQ(72u, asked);
    EXPECT_EQ(0xFFFFFFFFu, memory.PageFaultCount);
    EXPECT_EQ(0x200000002u, memory.PeakWorkingSetSize);
    EXPECT_EQ(0x300000003u, memory.WorkingSetSize);
    EXPECT_EQ(0x400000004u, memory.QuotaPeakPagedPoolUsage);
    EXPECT_EQ(0x500000005u, memory.QuotaPagedPoolUsage);
    EXPECT_EQ(0x600000006u, memory.QuotaPeakNonPagedPoolUsage);
    EXPECT_EQ(0x700000007u, memory.QuotaNonPagedPoolUsage);
    EXPECT_EQ(0x800000008u, memory.PagefileUsage);
    EXPECT_EQ(0x900000009u, memory.PeakPagefileUsage);
}

TEST(Identity, MemoryIsAskedOfTheProcessThatWasOpened) {
    HANDLE opened = nullptr;
    HANDLE asked = nullptr;
    test::ImportHook<decltype(OpenProcess)> const opens(
        "OpenProcess", [&](auto... arguments) { return opened = opens.original()(arguments...); });
    test::ImportHook<decltype(GetProcessMemoryInfo)> const asks(
        memoryImport, [&](HANDLE process, PROCESS_MEMORY_COUNTERS*, DWORD) -> BOOL {
            asked = process;
            return TRUE;
        });

    GetCurrentProcessMemoryInfo();

    EXPECT_NE(nullptr, opened);
    EXPECT_EQ(opened, asked);
}

TEST(Identity, MemoryOfAProcessThatCannotBeOpenedIsAFailure) {
    test::FailingImport<decltype(OpenProcess)> const fails(
        "OpenProcess", nullptr, ERROR_ACCESS_DENIED);
    test::HandleLeakCheck const check;

    auto const failure = memoryFailure();

    EXPECT_EQ(L"OpenProcess failed", failure.message());
    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Process", failure.file());
    EXPECT_GT(failure.line(), 0u);
}

TEST(Identity, MemoryThatCannotBeReadIsAFailure) {
    test::FailingImport<decltype(GetProcessMemoryInfo)> const fails(
        memoryImport, FALSE, ERROR_ACCESS_DENIED);
    test::HandleLeakCheck const check;

    auto const failure = memoryFailure();

    EXPECT_EQ(L"GetProcessMemoryInfo failed", failure.message());
    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Process", failure.file());
    EXPECT_GT(failure.line(), 0u);
}

TEST(Identity, MemoryInquiryLeavesNothingOpen) {
    test::HandleLeakCheck const check;

    GetCurrentProcessMemoryInfo();
}

TEST(Identity, BinaryPathIsTheFolderOfTheProgram) {
    auto const folder = GetOstrelBinaryPath();

    EXPECT_EQ(test::besideTestProgram(L""), folder);
    EXPECT_EQ(L'\\', folder.back());
}

TEST(Identity, BinaryPathIsAskedForWithRoomFor260Characters) {
    HMODULE asked = nullptr;
    DWORD room = 0;
    // A path that fills the buffer has no terminator.
    std::wstring const path = L"C:\\" + std::wstring(256, L'x') + L"\\";
    test::ImportHook const hook(
        "GetModuleFileNameW", [&](HMODULE module, wchar_t* buffer, DWORD size) -> DWORD {
            asked = module;
            room = size;
            std::copy(path.begin(), path.end(), buffer);
            return 260;
        });

    EXPECT_EQ(path, GetOstrelBinaryPath());

    EXPECT_EQ(GetModuleHandleW(nullptr), asked);
    EXPECT_EQ(260u, room);
}

TEST(Identity, BinaryPathWithoutADotIsThatOfAFileToo) {
    test::ImportHook const hook(
        "GetModuleFileNameW", [](HMODULE, wchar_t* buffer, DWORD size) -> DWORD {
            answer(L"C:\\folder\\program", buffer, &size);
            return size;
        });

    EXPECT_EQ(L"C:\\folder\\", GetOstrelBinaryPath());
}

TEST(Identity, BinaryPathThatCannotBeReadIsEmpty) {
    test::FailingImport<decltype(GetModuleFileNameW)> const fails(
        "GetModuleFileNameW", 0, ERROR_INVALID_HANDLE);

    EXPECT_EQ(L"", GetOstrelBinaryPath());
}

TEST(Identity, InstallFoldersAreUnderProgramFiles) {
    std::array<wchar_t, MAX_PATH> programFiles{};
    ASSERT_EQ(S_OK, SHGetFolderPathW(nullptr, 38, nullptr, 0, programFiles.data()));

    EXPECT_EQ(programFiles.data() + std::wstring(L"\\Vorrane\\"), GetVorranePath().str());
    EXPECT_EQ(
        programFiles.data() + std::wstring(L"\\Vorrane\\Ostrel Server\\"),
        GetOstrelServerPath().str());
}

TEST(Identity, ProgramFilesAreAskedForWithoutAnyUser) {
    int folder = 0;
    DWORD flags = 1;
    HWND window = reinterpret_cast<HWND>(1);
    HANDLE token = window;
    test::ImportHook const hook(
        "SHGetFolderPathW",
        [&](HWND owner, int identifier, HANDLE user, DWORD kind, wchar_t*) -> HRESULT {
            window = owner;
            folder = identifier;
            token = user;
            flags = kind;
            return S_OK;
        });

    GetVorranePath();

    EXPECT_EQ(38, folder);
    EXPECT_EQ(0u, flags);
    EXPECT_EQ(nullptr, window);
    EXPECT_EQ(nullptr, token);
}

TEST(Identity, AnswerOfTheProgramFilesIsNotTested) {
    test::ImportHook const hook(
        "SHGetFolderPathW", [](HWND, int, HANDLE, DWORD size, wchar_t* buffer) -> HRESULT {
            answer(L"D:\\Programs", buffer, &size);
            return E_FAIL;
        });

    EXPECT_EQ(L"D:\\Programs\\Vorrane\\", GetVorranePath().str());
    EXPECT_EQ(L"D:\\Programs\\Vorrane\\Ostrel Server\\", GetOstrelServerPath().str());
}

TEST(Identity, InstallFolderWithoutProgramFilesIsRelative) {
    test::FailingImport<decltype(SHGetFolderPathW)> const fails(
        "SHGetFolderPathW", E_FAIL, ERROR_FILE_NOT_FOUND, test::everyCall);

    EXPECT_EQ(L"Vorrane\\", GetVorranePath().str());
    EXPECT_EQ(L"Vorrane\\Ostrel Server\\", GetOstrelServerPath().str());
}
