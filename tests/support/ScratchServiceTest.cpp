#include "tests/support/ScratchService.h"

#include "tests/support/HandleCount.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using test::ScratchService;

namespace {

constexpr wchar_t name[] = L"vrUtilsTests scratch service";

// A service of this name that nobody takes away, as an ended test leaves it.
void leaveBehind() {
    test::OwnedService const manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    test::OwnedService const service(CreateServiceW(
        manager.get(), name, nullptr, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
        SERVICE_DISABLED, SERVICE_ERROR_NORMAL, L"C:\\no such program.exe", nullptr, nullptr,
        nullptr, nullptr, nullptr));
    ASSERT_TRUE(service);
}

} // namespace

TEST(ScratchService, IsThereWhileTheObjectLives) {
    std::optional<ScratchService> service(std::in_place, name);
    EXPECT_TRUE(ScratchService::exists(name));
    EXPECT_EQ(DWORD{SERVICE_STOPPED}, service->state());

    service.reset();

    EXPECT_FALSE(ScratchService::exists(name));
}

TEST(ScratchService, RunsAndPauses) {
    ScratchService service(name);

    service.run();
    EXPECT_EQ(DWORD{SERVICE_RUNNING}, service.state());
    service.pause();
    EXPECT_EQ(DWORD{SERVICE_PAUSED}, service.state());
}

TEST(ScratchService, IsGoneEvenIfItRan) {
    for (bool const paused : {false, true}) {
        ScratchService service(name);
        service.run();
        if (paused)
            service.pause();
    }

    EXPECT_FALSE(ScratchService::exists(name));
}

TEST(ScratchService, SlowOneIsGoneEvenIfItNeverRan) {
    {
        test::ServiceStart start;
        start.isSlow = true;
        ScratchService service(name, start);
        service.start();
        ASSERT_TRUE(service.waitUntil(L"starting"));
        EXPECT_EQ(DWORD{SERVICE_START_PENDING}, service.state());
    }

    EXPECT_FALSE(ScratchService::exists(name));
}

TEST(ScratchService, ReplacesOneThatWasLeftBehind) {
    leaveBehind();

    ScratchService service(name);
    service.run();

    EXPECT_EQ(DWORD{SERVICE_RUNNING}, service.state());
}

TEST(ScratchService, NameThatIsNoneIsRefused) {
    EXPECT_THROW(ScratchService(L"with a \\ in it"), std::system_error);
}

TEST(ScratchService, LeavesNoHandleOpen) {
    { ScratchService(name).run(); }
    test::HandleLeakCheck const check;

    ScratchService(name).run();
}
