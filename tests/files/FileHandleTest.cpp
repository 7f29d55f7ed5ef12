#include "vrUtils/Files/FileHandle.h"

#include "foundation/Platform.h"
#include "tests/files/FailsWith.h"
#include "tests/files/Openers.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace vrUtils::Files;

namespace {

// Whether the handle is one of this process's open handles.
bool isOpen(void* handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

class FileHandles : public testing::Test {
  protected:
    FileHandles() { m_folder.write(L"a.bin", "content"); }

    vr::Path pathOf(wchar_t const* name) const { return vr::Path::file(m_folder.file(name)); }

    test::ScratchFolder m_folder;
    vr::Path const m_path = pathOf(L"a.bin");
    vr::Path const m_missing = pathOf(L"missing.bin");
};

class EachFileHandle : public FileHandles, public testing::WithParamInterface<Opener> {
  protected:
    std::unique_ptr<FileHandle> const m_file = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(, EachFileHandle, testing::ValuesIn(openers()), [](auto const& tested) {
    return std::string(tested.param.name);
});

// Whether a class derived from `Base` can call the three operations of `Base` itself.
template <typename Base>
class Reach : public Base {
    template <typename Class>
    static auto access(Class const* file) -> decltype(file->Base::Access(), std::true_type{});
    static std::false_type access(...);

    template <typename Class>
    static auto share(Class const* file) -> decltype(file->Base::ShareMode(), std::true_type{});
    static std::false_type share(...);

    template <typename Class>
    static auto disposition(Class const* file)
        -> decltype(file->Base::CreationDisposition(), std::true_type{});
    static std::false_type disposition(...);

  public:
    static constexpr bool toAccess = decltype(access(static_cast<Reach*>(nullptr)))::value;
    static constexpr bool toShareMode = decltype(share(static_cast<Reach*>(nullptr)))::value;
    static constexpr bool toDisposition =
        decltype(disposition(static_cast<Reach*>(nullptr)))::value;
};

// Whether anybody can call them.
template <typename Class, typename = void>
constexpr bool accessIsPublic = false;
template <typename Class>
constexpr bool accessIsPublic<Class, std::void_t<decltype(std::declval<Class const&>().Access())>> =
    true;

} // namespace

static_assert(std::is_abstract_v<FileHandle>);
static_assert(std::is_abstract_v<FileHandleWrite>);
static_assert(std::has_virtual_destructor_v<FileHandle>);
static_assert(sizeof(FileHandle) == 2 * sizeof(void*), "one handle is all the state");
static_assert(std::is_base_of_v<FileHandleWriteNewOrExisting, FileHandleWriteExclusive>);
static_assert(std::is_same_v<void*, decltype(std::declval<FileHandleRead const&>().Handle())>);

static_assert(!accessIsPublic<FileHandleRead>);
static_assert(Reach<FileHandleRead>::toAccess, "protected: a derived class may call it");
static_assert(Reach<FileHandleRead>::toShareMode);
static_assert(Reach<FileHandleRead>::toDisposition);
static_assert(Reach<FileHandleWriteNewOrExisting>::toAccess);
static_assert(!Reach<FileHandleWriteExclusive>::toAccess, "private: nobody may");
static_assert(!Reach<FileHandleWriteExclusive>::toShareMode);
static_assert(!Reach<FileHandleWriteExclusive>::toDisposition);

TEST_P(EachFileHandle, HoldsTheInvalidValueAtFirst) {
    EXPECT_EQ(INVALID_HANDLE_VALUE, m_file->Handle());
}

TEST_P(EachFileHandle, HasItsVirtualOperationsInOrder) {
    using Operation = std::uint32_t (*)(FileHandle const*);
    auto const* const table = *reinterpret_cast<Operation const* const*>(m_file.get());

    // The first two slots are the two forms of the destructor.
    EXPECT_EQ(GetParam().access, table[2](m_file.get()));
    EXPECT_EQ(GetParam().share, table[3](m_file.get()));
    EXPECT_EQ(GetParam().disposition, table[4](m_file.get()));
}

TEST_P(EachFileHandle, AsksThePlatformForItsOwnMode) {
    std::wstring text;
    std::vector<DWORD> numbers;
    void const* security = this;
    void const* model = this;
    test::ImportHook const hook(
        "CreateFileW",
        [&](LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
            DWORD disposition, DWORD flags, HANDLE other) -> HANDLE {
            text = name;
            numbers = {access, share, disposition, flags};
            security = attributes;
            model = other;
            return CreateFileW(name, access, share, attributes, disposition, flags, other);
        });

    m_file->Open(vr::Path::file(m_folder.path() + L"/a.bin"));

    EXPECT_EQ(m_path.components().wholePath(), text);
    EXPECT_EQ(
        (std::vector<DWORD>{GetParam().access, GetParam().share, GetParam().disposition, 128}),
        numbers);
    EXPECT_EQ(nullptr, security);
    EXPECT_EQ(nullptr, model);
}

TEST_P(EachFileHandle, TreatsAnExistingFileInItsOwnWay) {
    m_file->Open(m_path);
    m_file->Close();

    EXPECT_EQ(GetParam().keepsContent ? "content" : "", m_folder.read(L"a.bin"));
}

TEST_P(EachFileHandle, TreatsAMissingFileInItsOwnWay) {
    if (GetParam().makesMissingFile) {
        m_file->Open(m_missing);
        EXPECT_TRUE(isOpen(m_file->Handle()));
        EXPECT_EQ("", (m_file->Close(), m_folder.read(L"missing.bin")));
    } else {
        EXPECT_ANY_THROW(m_file->Open(m_missing));
        EXPECT_FALSE(m_folder.exists(L"missing.bin"));
    }
}

TEST_P(EachFileHandle, HoldsTheInvalidValueAfterAFailure) {
    auto const path = pathOf(L"no folder\\a.bin");

    EXPECT_THAT(
        [&] { m_file->Open(path); },
        FailsWith(L"Unable to open file " + m_folder.file(L"no folder\\a.bin")));

    EXPECT_EQ(INVALID_HANDLE_VALUE, m_file->Handle());
}

TEST_P(EachFileHandle, ClosesTwiceWithoutHarm) {
    m_file->Open(m_path);
    auto const handle = m_file->Handle();
    test::ImportHook const hook(
        "CloseHandle", [&](HANDLE closed) -> BOOL { return CloseHandle(closed); });

    m_file->Close();
    m_file->Close();

    EXPECT_EQ(1u, hook.calls());
    EXPECT_FALSE(isOpen(handle));
    EXPECT_EQ(INVALID_HANDLE_VALUE, m_file->Handle());
}

TEST_F(FileHandles, CloseOfNothingReachesNoCall) {
    test::ImportHook const hook("CloseHandle", [&](HANDLE) -> BOOL { return TRUE; });

    { FileHandleRead().Close(); }

    EXPECT_EQ(0u, hook.calls());
}

TEST_F(FileHandles, CloseAfterAFailedOpenReachesNoCall) {
    FileHandleRead file;
    EXPECT_ANY_THROW(file.Open(m_missing));
    test::ImportHook const hook("CloseHandle", [&](HANDLE) -> BOOL { return TRUE; });

    file.Close();

    EXPECT_EQ(0u, hook.calls());
}

TEST_F(FileHandles, CloseReportsNoFailure) {
    FileHandleRead file;
    file.Open(m_path);
    auto const handle = file.Handle();
    {
        test::ImportHook const hook("CloseHandle", [&](HANDLE) -> BOOL { return FALSE; });
        EXPECT_NO_THROW(file.Close());
    }

    EXPECT_EQ(INVALID_HANDLE_VALUE, file.Handle());
    EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(FileHandles, TheEndOfTheScopeCloses) {
    void* handle = nullptr;
    {
        FileHandleRead file;
        file.Open(m_path);
        handle = file.Handle();
        EXPECT_TRUE(isOpen(handle));
    }

    EXPECT_FALSE(isOpen(handle));
}

TEST_F(FileHandles, AnExceptionCloses) {
    void* handle = nullptr;
    try {
        FileHandleWriteExclusive file;
        file.Open(m_path);
        handle = file.Handle();
        throw 0;
    } catch (int) {
    }

    EXPECT_FALSE(isOpen(handle));
}

TEST_F(FileHandles, DestructionThroughTheBaseCloses) {
    auto file = makeHandle<FileHandleWriteNew>();
    file->Open(m_path);
    auto const handle = file->Handle();

    file.reset();

    EXPECT_FALSE(isOpen(handle));
}

TEST_F(FileHandles, OpensAgainAfterClose) {
    FileHandleRead file;
    file.Open(m_path);
    file.Close();

    file.Open(m_path);

    EXPECT_TRUE(isOpen(file.Handle()));
}

TEST_F(FileHandles, SecondOpenLosesTheFirstHandle) {
    FileHandleRead file;
    file.Open(m_path);
    auto const first = file.Handle();
    auto const before = test::handleCount();

    file.Open(m_path);

    EXPECT_EQ(before + 1, test::handleCount());
    EXPECT_NE(first, file.Handle());
    EXPECT_TRUE(isOpen(first));
    file.Close();
    EXPECT_TRUE(CloseHandle(first));
}

TEST_F(FileHandles, FailedSecondOpenLosesTheFirstHandle) {
    FileHandleRead file;
    file.Open(m_path);
    auto const first = file.Handle();

    EXPECT_ANY_THROW(file.Open(m_missing));

    EXPECT_EQ(INVALID_HANDLE_VALUE, file.Handle());
    EXPECT_TRUE(CloseHandle(first));
}

TEST_F(FileHandles, CopyTakesTheValueAsItStands) {
    FileHandleRead file;
    file.Open(m_path);
    auto const before = test::handleCount();

    FileHandleRead copy(file);

    EXPECT_EQ(file.Handle(), copy.Handle());
    EXPECT_EQ(before, test::handleCount());
    copy.Close();
}

TEST_F(FileHandles, CloseLeavesACopyWithAStaleValue) {
    FileHandleRead file;
    file.Open(m_path);
    auto const handle = file.Handle();
    FileHandleRead const copy(file);

    file.Close();

    EXPECT_EQ(handle, copy.Handle());
    EXPECT_FALSE(isOpen(copy.Handle()));
}

TEST_F(FileHandles, CopyOfNothingIsNothing) {
    FileHandleRead const file;

    FileHandleRead const copy(file);

    EXPECT_EQ(INVALID_HANDLE_VALUE, copy.Handle());
}

TEST_F(FileHandles, AssignmentLeavesTheOldHandleOpen) {
    FileHandleRead source;
    FileHandleRead target;
    source.Open(m_path);
    target.Open(m_path);
    auto const old = target.Handle();

    auto& result = target = source;

    EXPECT_EQ(&target, &result);
    EXPECT_EQ(source.Handle(), target.Handle());
    EXPECT_TRUE(CloseHandle(old));
    source.Close();
}

TEST_F(FileHandles, AssignmentToItselfKeepsTheHandle) {
    FileHandleRead file;
    file.Open(m_path);
    auto& itself = file;

    file = itself;

    EXPECT_TRUE(isOpen(file.Handle()));
}

TEST_F(FileHandles, FailureNamesTheNormalFormOfThePath) {
    FileHandleRead file;
    auto const path = vr::Path::file(m_folder.path() + L"//missing.bin");

    EXPECT_THAT(
        [&] { file.Open(path); },
        FailsWith(L"Unable to open file " + m_folder.file(L"missing.bin")));
}

TEST_F(FileHandles, FailureIsTheSameForEveryPlatformError) {
    test::ImportHook const hook(
        "CreateFileW", [](LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return INVALID_HANDLE_VALUE;
        });
    FileHandleRead file;

    EXPECT_THAT(
        [&] { file.Open(m_path); }, FailsWith(L"Unable to open file " + m_folder.file(L"a.bin")));
}

TEST_F(FileHandles, FolderIsNoFile) {
    FileHandleRead file;

    EXPECT_THAT(
        [&] { file.Open(vr::Path::file(m_folder.path())); },
        FailsWith(L"Unable to open file " + m_folder.path()));
}

TEST_F(FileHandles, FailuresLeakNoHandle) {
    test::HandleLeakCheck const check;

    for (auto const& opener : openers())
        EXPECT_ANY_THROW(opener.make()->Open(pathOf(L"no folder\\a.bin")));
}

TEST_F(FileHandles, WrittenBytesAreReadBack) {
    FileHandleWriteNewOrExisting writer;
    writer.Open(m_missing);
    DWORD count = 0;
    ASSERT_TRUE(WriteFile(writer.Handle(), "clip", 4, &count, nullptr));
    writer.Close();

    FileHandleRead reader;
    reader.Open(m_missing);
    std::string bytes(8, '\0');
    ASSERT_TRUE(ReadFile(reader.Handle(), bytes.data(), 8, &count, nullptr));

    EXPECT_EQ("clip", bytes.substr(0, count));
}

TEST_F(FileHandles, ReaderCannotWrite) {
    FileHandleRead file;
    file.Open(m_path);
    DWORD count = 0;

    EXPECT_FALSE(WriteFile(file.Handle(), "clip", 4, &count, nullptr));
}

TEST_F(FileHandles, WriterCannotRead) {
    FileHandleWriteExisting file;
    file.Open(m_path);
    char byte = 0;
    DWORD count = 0;

    EXPECT_FALSE(ReadFile(file.Handle(), &byte, 1, &count, nullptr));
}

TEST_F(FileHandles, ExclusiveWriterReadsAndWrites) {
    FileHandleWriteExclusive file;
    file.Open(m_path);
    char byte = 0;
    DWORD count = 0;
    ASSERT_TRUE(WriteFile(file.Handle(), "clip", 4, &count, nullptr));
    SetFilePointer(file.Handle(), 3, nullptr, FILE_BEGIN);

    ASSERT_TRUE(ReadFile(file.Handle(), &byte, 1, &count, nullptr));

    EXPECT_EQ('p', byte);
}
