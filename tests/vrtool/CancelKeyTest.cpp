#include "tools/vrtool/CancelKey.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/vrtool/KeyConsole.h"

#include <gtest/gtest.h>

#include <optional>
#include <system_error>

namespace {

// The handler that the console is not told of, to be called in its place.
class CaughtHandler {
  public:
    bool operator()(DWORD event) const { return m_handler(event) != FALSE; }

  private:
    PHANDLER_ROUTINE m_handler = nullptr;
    test::ImportHook<decltype(SetConsoleCtrlHandler)> const m_hook{
        "SetConsoleCtrlHandler",
        [this](PHANDLER_ROUTINE handler, BOOL) -> BOOL {
            m_handler = handler;
            return TRUE;
        },
        test::thisProgram()};
};

} // namespace

TEST(VrtoolCancelKey, IsKeptWhenItIsPressed) {
    test::KeyConsole const console;
    CancelKey const key;
    EXPECT_FALSE(key.wasPressed());

    ASSERT_TRUE(console.send());

    EXPECT_TRUE(key.comesWithin(test::ceiling));
    EXPECT_TRUE(key.wasPressed());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(key.event(), 0));
}

TEST(VrtoolCancelKey, IsForgottenByTheNextObject) {
    test::KeyConsole const console;
    std::optional<CancelKey> key(std::in_place);
    ASSERT_TRUE(console.send());
    ASSERT_TRUE(key->comesWithin(test::ceiling));

    key.reset();
    key.emplace();

    EXPECT_FALSE(key->wasPressed());
}

TEST(VrtoolCancelKey, GoesItsUsualWayBehindTheObject) {
    test::KeyConsole const console;
    { CancelKey const key; }

    EXPECT_TRUE(console.press());
}

TEST(VrtoolCancelKey, IsBreakTooAndNothingElse) {
    CaughtHandler const handler;
    CancelKey const key;

    EXPECT_FALSE(handler(CTRL_CLOSE_EVENT));
    EXPECT_FALSE(handler(CTRL_LOGOFF_EVENT));
    EXPECT_FALSE(key.wasPressed());
    EXPECT_TRUE(handler(CTRL_BREAK_EVENT));
    EXPECT_TRUE(key.wasPressed());
}

TEST(VrtoolCancelKey, ThatIsLateIsNobodys) {
    CaughtHandler const handler;
    { CancelKey const key; }

    EXPECT_FALSE(handler(CTRL_C_EVENT));
}

TEST(VrtoolCancelKey, NeedsAnEvent) {
    test::FailingImport<decltype(CreateEventW)> const fails(
        "CreateEventW", nullptr, ERROR_NOT_ENOUGH_MEMORY, 1, test::thisProgram());

    EXPECT_THROW(CancelKey(), std::system_error);
}

TEST(VrtoolCancelKey, LeavesNoHandleOpen) {
    test::HandleLeakCheck const check;

    CancelKey const key;
}
