// Copies of a lock share its handle. So the lock is taken on a file of a made-up platform here, or
// its handle closed, before anything is copied.

#include "tests/files/LockFiles.h"

#include <optional>

using namespace vrUtils::Files;
using testing::ElementsAre;

namespace {

FileHandleWriteExclusive& handleOf(vrUtils::Files::LockFile& lock);
vr::Path& lockedPathOf(vrUtils::Files::LockFile& lock);
std::wstring& holderOf(vrUtils::Files::LockFile& lock);

// An explicit instantiation may name what is private.
template <auto handle, auto lockedPath, auto holder>
struct Inside {
    friend FileHandleWriteExclusive& handleOf(vrUtils::Files::LockFile& lock) {
        return lock.*handle;
    }
    friend vr::Path& lockedPathOf(vrUtils::Files::LockFile& lock) { return lock.*lockedPath; }
    friend std::wstring& holderOf(vrUtils::Files::LockFile& lock) { return lock.*holder; }
};
template struct Inside<
    &vrUtils::Files::LockFile::m_handle, &vrUtils::Files::LockFile::m_lockedPath,
    &vrUtils::Files::LockFile::m_lockHolder>;

std::wstring rawTextOf(vrUtils::Files::LockFile& lock) {
    return lockedPathOf(lock).modify(vr::Path::eFile).get();
}

// The path is not in normal form.
class LockFileCopy : public LockFiles {
  protected:
    LockFileCopy() { handleOf(m_lock).Close(); }

    std::wstring const m_raw = m_folder.path() + L"\\\\clip.mxf";
    LockFile m_lock{vr::Path::file(m_raw)};
};

// Every file is this handle, and every call on it succeeds and is noted.
class CopiedHandle : public testing::Test {
  protected:
    using LockFile = vrUtils::Files::LockFile;

    HANDLE const m_file = reinterpret_cast<HANDLE>(std::uintptr_t{0x7ABC0000});
    std::vector<std::string> m_calls;

    BOOL note(char const* call, HANDLE handle) {
        m_calls.push_back(handle == m_file ? call : "a call on another handle");
        return TRUE;
    }

    test::ImportHook<decltype(CreateFileW)> m_open{
        "CreateFileW", [this](LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
            return m_file;
        }};
    test::ImportHook<decltype(WriteFile)> m_write{
        "WriteFile", [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) { return TRUE; }};
    test::ImportHook<decltype(LockFileEx)> m_lockRange{
        "LockFileEx", [](HANDLE, DWORD, DWORD, DWORD, DWORD, LPOVERLAPPED) { return TRUE; }};
    test::ImportHook<decltype(UnlockFile)> m_unlock{
        "UnlockFile",
        [this](HANDLE handle, DWORD, DWORD, DWORD, DWORD) { return note("unlock", handle); }};
    test::ImportHook<decltype(CloseHandle)> m_close{
        "CloseHandle", [this](HANDLE handle) { return note("close", handle); }};
    test::ImportHook<decltype(DeleteFileW)> m_delete{
        "DeleteFileW", [this](LPCWSTR) { return note("delete", m_file); }};

    std::optional<LockFile> m_lock{std::in_place, vr::Path::file(L"C:\\clip.mxf")};
};

} // namespace

TEST_F(LockFileCopy, HasThePathAsItWasEnteredAndTheName) {
    LockFile copy(m_lock);

    EXPECT_EQ(m_raw, rawTextOf(copy));
    EXPECT_NE(L"", holderOf(copy));
    EXPECT_EQ(holderOf(m_lock), holderOf(copy));
}

TEST_F(LockFileCopy, OfAClosedHandleIsClosed) {
    LockFile copy(m_lock);

    EXPECT_EQ(INVALID_HANDLE_VALUE, handleOf(copy).Handle());
}

TEST_F(LockFileCopy, ByAssignmentHasThePathInNormalFormAndTheName) {
    ComputerNamed const other(L"OTHER");
    LockFile target(vr::Path::file(m_folder.file(L"other.mxf")));
    handleOf(target).Close();

    auto& result = target = m_lock;

    EXPECT_EQ(&target, &result);
    EXPECT_EQ(m_text, rawTextOf(target));
    EXPECT_EQ(holderOf(m_lock), holderOf(target));
    DeleteFileW(m_folder.file(L"other.mxf.lck").c_str());
}

TEST_F(LockFileCopy, ByAssignmentToItselfKeepsEverything) {
    auto const& itself = m_lock;
    auto const holder = holderOf(m_lock);

    m_lock = itself;

    EXPECT_EQ(m_text, rawTextOf(m_lock));
    EXPECT_EQ(holder, holderOf(m_lock));
}

TEST_F(CopiedHandle, IsSharedAndReleasedByBoth) {
    std::optional<LockFile> copy(*m_lock);
    EXPECT_EQ(m_file, handleOf(*copy).Handle());

    copy.reset();
    EXPECT_THAT(m_calls, ElementsAre("unlock", "close", "delete"));
    EXPECT_EQ(m_file, handleOf(*m_lock).Handle());
    m_lock.reset();

    EXPECT_THAT(m_calls, ElementsAre("unlock", "close", "delete", "unlock", "close", "delete"));
}

TEST_F(CopiedHandle, TakesTheOneOfTheSourceInAnAssignment) {
    std::optional<LockFile> target(std::in_place, vr::Path::file(L"C:\\other.mxf"));
    auto const other = reinterpret_cast<HANDLE>(std::uintptr_t{0x7DEF0000});
    {
        test::ImportHook const opens(
            "CreateFileW",
            [&](LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) -> HANDLE {
                return other;
            });
        handleOf(*target).Open(vr::Path::file(L"C:\\other.mxf"));
    }

    *target = *m_lock;

    EXPECT_EQ(m_file, handleOf(*target).Handle());
    EXPECT_THAT(m_calls, ElementsAre());
}
