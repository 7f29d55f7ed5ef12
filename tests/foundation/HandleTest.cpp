#include "foundation/Handle.h"

#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

namespace {

std::vector<int> closed;

// Handles that only note how they are closed, and disturb the last error in doing so.
struct NumberTraits {
    using Value = int;

    static Value none() noexcept { return -1; }

    static void close(Value value) noexcept {
        closed.push_back(value);
        SetLastError(ERROR_INVALID_HANDLE);
    }
};

using NumberOwner = vrUtils::Handle<NumberTraits>;

class Handle : public testing::Test {
  protected:
    void SetUp() override { closed.clear(); }

    std::vector<int> const none{};
};

// Whether the handle is one of this process's open handles.
bool isOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

} // namespace

static_assert(!std::is_copy_constructible_v<NumberOwner>);
static_assert(!std::is_copy_assignable_v<NumberOwner>);
static_assert(std::is_nothrow_move_constructible_v<NumberOwner>);
static_assert(std::is_nothrow_move_assignable_v<NumberOwner>);
static_assert(!std::is_convertible_v<NumberOwner, bool>, "a test for a handle is written out");
static_assert(sizeof(NumberOwner) == sizeof(int), "an owner costs nothing");

TEST_F(Handle, HoldsNothingAtFirst) {
    NumberOwner const owner;

    EXPECT_FALSE(owner);
    EXPECT_EQ(-1, owner.get());
}

TEST_F(Handle, ClosesAtTheEndOfItsScope) {
    {
        NumberOwner const owner(7);
        EXPECT_TRUE(owner);
        EXPECT_EQ(7, owner.get());
        EXPECT_EQ(none, closed);
    }

    EXPECT_EQ(std::vector<int>{7}, closed);
}

TEST_F(Handle, ClosesNothingWhenItHoldsNothing) {
    { NumberOwner const owner; }

    EXPECT_EQ(none, closed);
}

TEST_F(Handle, ReleasedHandleStaysOpen) {
    {
        NumberOwner owner(7);
        EXPECT_EQ(7, owner.release());
        EXPECT_FALSE(owner);
    }

    EXPECT_EQ(none, closed);
}

TEST_F(Handle, ResetClosesTheOldAndTakesTheNew) {
    {
        NumberOwner owner(7);
        owner.reset(8);
        EXPECT_EQ(std::vector<int>{7}, closed);
        EXPECT_EQ(8, owner.get());
    }

    EXPECT_EQ((std::vector<int>{7, 8}), closed);
}

TEST_F(Handle, ResetToNothingCloses) {
    NumberOwner owner(7);

    owner.reset();
    owner.reset();

    EXPECT_FALSE(owner);
    EXPECT_EQ(std::vector<int>{7}, closed);
}

TEST_F(Handle, MovedFromHoldsNothing) {
    {
        NumberOwner source(7);
        NumberOwner const target(std::move(source));
        EXPECT_FALSE(source); // NOLINT(bugprone-use-after-move): nothing is what it holds
        EXPECT_EQ(7, target.get());
    }

    EXPECT_EQ(std::vector<int>{7}, closed);
}

TEST_F(Handle, MoveAssignmentClosesWhatTheTargetHeld) {
    NumberOwner source(7);
    NumberOwner target(8);

    target = std::move(source);

    EXPECT_EQ(std::vector<int>{8}, closed);
    EXPECT_EQ(7, target.get());
    EXPECT_FALSE(source); // NOLINT(bugprone-use-after-move): nothing is what it holds
}

TEST_F(Handle, MovedOntoItselfKeepsItsHandle) {
    NumberOwner owner(7);
    auto& itself = owner;

    owner = std::move(itself);

    EXPECT_EQ(7, owner.get());
    EXPECT_EQ(none, closed);
}

TEST_F(Handle, ReceiveClosesAndTakesWhatIsWritten) {
    {
        NumberOwner owner(7);
        *owner.receive() = 8;
        EXPECT_EQ(std::vector<int>{7}, closed);
        EXPECT_EQ(8, owner.get());
    }

    EXPECT_EQ((std::vector<int>{7, 8}), closed);
}

TEST_F(Handle, ClosingKeepsTheLastError) {
    SetLastError(ERROR_SHARING_VIOLATION);

    { NumberOwner const owner(7); }

    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, GetLastError());
}

TEST_F(Handle, EventIsClosed) {
    HANDLE const event = CreateEventW(nullptr, TRUE, FALSE, nullptr);

    {
        vrUtils::EventOwner const owner(event);
        ASSERT_TRUE(owner);
        EXPECT_TRUE(isOpen(event));
    }

    EXPECT_FALSE(isOpen(event));
}

TEST_F(Handle, NullIsNoEventAndNoProcess) {
    EXPECT_FALSE(vrUtils::EventOwner(nullptr));
    EXPECT_FALSE(vrUtils::ProcessOwner(nullptr));
    EXPECT_FALSE(vrUtils::ServiceOwner(nullptr));
    EXPECT_FALSE(vrUtils::RegistryOwner(nullptr));
    EXPECT_FALSE(vrUtils::ModuleOwner(nullptr));
}

TEST_F(Handle, TheInvalidValueIsNoFileAndNoSearch) {
    EXPECT_FALSE(vrUtils::FileOwner(INVALID_HANDLE_VALUE));
    EXPECT_FALSE(vrUtils::FindOwner(INVALID_HANDLE_VALUE));
}

TEST_F(Handle, ProcessIsClosed) {
    HANDLE const process = OpenProcess(SYNCHRONIZE, FALSE, GetCurrentProcessId());

    {
        vrUtils::ProcessOwner const owner(process);
        ASSERT_TRUE(owner);
    }

    EXPECT_FALSE(isOpen(process));
}

TEST_F(Handle, FileIsClosed) {
    HANDLE const file = CreateFileW(
        L"NUL", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);

    {
        vrUtils::FileOwner const owner(file);
        ASSERT_TRUE(owner);
    }

    EXPECT_FALSE(isOpen(file));
}

TEST_F(Handle, RegistryKeyIsClosed) {
    vrUtils::RegistryOwner owner;
    ASSERT_EQ(
        ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, owner.receive()));
    auto const key = owner.get();

    owner.reset();

    EXPECT_EQ(
        ERROR_INVALID_HANDLE, RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Handle, ModuleIsReleased) {
    wchar_t const library[] = L"cabinet.dll";
    ASSERT_EQ(nullptr, GetModuleHandleW(library));

    {
        vrUtils::ModuleOwner const owner(LoadLibraryW(library));
        ASSERT_TRUE(owner);
        EXPECT_EQ(owner.get(), GetModuleHandleW(library));
    }

    EXPECT_EQ(nullptr, GetModuleHandleW(library));
}

TEST_F(Handle, SearchEndsByItsOwnCall) {
    auto const search = reinterpret_cast<HANDLE>(7);
    std::vector<HANDLE> ended;
    test::ImportHook const hook(
        "FindClose",
        [&](HANDLE handle) -> BOOL {
            ended.push_back(handle);
            return TRUE;
        },
        test::thisProgram());

    { vrUtils::FindOwner const owner(search); }

    EXPECT_EQ(std::vector<HANDLE>{search}, ended);
}

TEST_F(Handle, ServiceIsClosedByItsOwnCall) {
    SC_HANDLE const manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    ASSERT_NE(nullptr, manager);

    { vrUtils::ServiceOwner const owner(manager); }

    EXPECT_FALSE(CloseServiceHandle(manager));
}
