#include "vrUtils/SingleAppInstance.h"

#include "foundation/Platform.h"
#include "tests/process/CallOrder.h"
#include "tests/process/ThreadCalls.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ChildAction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/OwnedHandle.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using vrUtils::SingleAppInstance::BringWindowToFrontIfFound;
using vrUtils::SingleAppInstance::SingleInstance;

namespace {

// A name that no other test process uses.
std::wstring ownName(wchar_t const* name) { return name + std::to_wstring(GetCurrentProcessId()); }

std::wstring mutexNameOf(std::wstring const& name) { return name + L" Startup Mutex"; }

// A window at the top level, with this title; hidden, since to show one takes seconds here.
class Window {
  public:
    explicit Window(std::wstring const& title)
        : m_window(CreateWindowExW(
              0, L"STATIC", title.c_str(), WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
              nullptr, nullptr)) {
        if (!m_window)
            throw std::runtime_error("no window can be made: is there a display?");
    }

    Window(Window const&) = delete;
    Window& operator=(Window const&) = delete;

    ~Window() { DestroyWindow(m_window); }

    HWND handle() const { return m_window; }

  private:
    HWND m_window;
};

// Keeps how the library raises windows; the calls go through, and are said to have failed.
class Raises {
  public:
    std::vector<Call> calls() const { return m_order.calls(); }

  private:
    CallOrder m_order;
    test::ImportHook<decltype(BringWindowToTop)> m_top{"BringWindowToTop", [this](HWND window) {
                                                           m_order.add({"top", window});
                                                           m_top.original()(window);
                                                           return FALSE;
                                                       }};
    test::ImportHook<decltype(SetForegroundWindow)> m_front{
        "SetForegroundWindow", [this](HWND window) {
            m_order.add({"front", window});
            m_front.original()(window);
            return FALSE;
        }};
};

auto raised(Window const& window) {
    return ElementsAre(Call{"top", window.handle()}, Call{"front", window.handle()});
}

// Keeps the handles of the mutexes that the library makes.
class Mutexes {
  public:
    HANDLE last() const { return m_last; }

  private:
    HANDLE m_last = nullptr;
    test::ImportHook<decltype(CreateMutexW)> m_hook{
        "CreateMutexW", [this](LPSECURITY_ATTRIBUTES attributes, BOOL owner, LPCWSTR name) {
            m_last = m_hook.original()(attributes, owner, name);
            return m_last;
        }};
};

// What a call writes into its buffer, and the length that it reports.
struct ModuleName {
    std::wstring text;
    DWORD length;

    explicit ModuleName(std::wstring name)
        : text(std::move(name)), length(static_cast<DWORD>(text.size())) {}
    ModuleName(std::wstring name, DWORD reported) : text(std::move(name)), length(reported) {}
};

// Stands in for the two executables: that of the window that was found, and our own.
class Executables {
  public:
    Executables(ModuleName theirs, ModuleName ours)
        : m_theirs(
              "GetWindowModuleFileNameW",
              [this, theirs](HWND window, LPWSTR buffer, UINT size) -> UINT {
                  questions.push_back({"theirs", window, size});
                  buffers.push_back(buffer);
                  return give(theirs, buffer);
              }),
          m_ours(
              "GetModuleFileNameW",
              [this, ours](HMODULE module, LPWSTR buffer, DWORD size) -> DWORD {
                  questions.push_back({"ours", module, size});
                  buffers.push_back(buffer);
                  return give(ours, buffer);
              }) {}

    std::vector<Call> questions;
    std::vector<wchar_t const*> buffers;

  private:
    static DWORD give(ModuleName const& name, wchar_t* buffer) {
        std::copy(name.text.begin(), name.text.end(), buffer);
        return name.length;
    }

    test::ImportHook<UINT(HWND, LPWSTR, UINT)> m_theirs;
    test::ImportHook<DWORD(HMODULE, LPWSTR, DWORD)> m_ours;
};

// Another process that asks for the name, tells the answer, and keeps its object.
test::ChildAction const askForName(L"ask for the name", [](auto const& arguments) {
    SingleInstance instance;
    std::puts(instance.isAnotherRunning(arguments.at(0)) ? "another runs" : "claimed");
    std::fflush(stdout);
    Sleep(INFINITE);
    return 0;
});

test::ChildAction const showWindow(L"show a window", [](auto const& arguments) {
    Window const window(arguments.at(0));
    std::puts("shown");
    std::fflush(stdout);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    return 0;
});

class SingleInstances : public testing::Test {
  protected:
    bool isNameTaken() const {
        test::OwnedHandle const mutex(OpenMutexW(SYNCHRONIZE, FALSE, mutexNameOf(m_name).c_str()));
        return mutex != nullptr;
    }

    std::wstring const m_name = ownName(L"Ostrel Monitor ");
};

// The name is taken when the test begins.
class SecondInstance : public SingleInstances {
  protected:
    SecondInstance() { m_first.isAnotherRunning(m_name); }

    SingleInstance m_first;
    SingleInstance m_instance;
};

} // namespace

static_assert(!std::is_copy_constructible_v<SingleInstance>);
static_assert(std::is_copy_assignable_v<SingleInstance>);
static_assert(sizeof(SingleInstance) == sizeof(void*), "one handle is all the state");

TEST_F(SingleInstances, FirstOneRunsAlone) {
    SingleInstance instance;

    EXPECT_FALSE(instance.isAnotherRunning(m_name));

    EXPECT_TRUE(isNameTaken());
}

TEST_F(SingleInstances, HoldsNoMutexBeforeItIsAsked) {
    test::FailingImport<decltype(CloseHandle)> const closes("CloseHandle", TRUE, 0);

    { SingleInstance const instance; }

    EXPECT_FALSE(isNameTaken());
    EXPECT_EQ(0u, closes.calls());
}

TEST_F(SingleInstances, AsksForAnOwnedMutexOfTheName) {
    std::wstring text;
    LPSECURITY_ATTRIBUTES security = reinterpret_cast<LPSECURITY_ATTRIBUTES>(this);
    BOOL owned = FALSE;
    test::ImportHook<decltype(CreateMutexW)> const hook(
        "CreateMutexW", [&](LPSECURITY_ATTRIBUTES attributes, BOOL owner, LPCWSTR name) {
            text = name;
            security = attributes;
            owned = owner;
            return hook.original()(attributes, owner, name);
        });
    SingleInstance instance;

    instance.isAnotherRunning(m_name);

    EXPECT_EQ(m_name + L" Startup Mutex", text);
    EXPECT_EQ(nullptr, security);
    EXPECT_EQ(TRUE, owned);
}

TEST_F(SingleInstances, SecondProcessFindsTheFirst) {
    SingleInstance instance;
    EXPECT_FALSE(instance.isAnotherRunning(m_name));

    auto const child = askForName.start({m_name});

    EXPECT_TRUE(child->waitForOutput("another runs"));
}

TEST_F(SingleInstances, ClaimEndsWithTheObject) {
    { SingleInstance().isAnotherRunning(m_name); }

    EXPECT_FALSE(isNameTaken());
    EXPECT_FALSE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, ClaimEndsWithTheProcess) {
    auto const child = askForName.start({m_name});
    ASSERT_TRUE(child->waitForOutput("claimed"));
    EXPECT_TRUE(SingleInstance().isAnotherRunning(m_name));

    child->kill();

    EXPECT_FALSE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, NamesAreApart) {
    SingleInstance instance;
    instance.isAnotherRunning(m_name);

    EXPECT_FALSE(SingleInstance().isAnotherRunning(m_name + L"2"));
}

TEST_F(SecondInstance, OfTheSameProcessFindsTheFirst) {
    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));
}

TEST_F(SingleInstances, SecondObjectKeepsTheNameAlive) {
    std::optional<SingleInstance> first(std::in_place);
    SingleInstance second;
    EXPECT_FALSE(first->isAnotherRunning(m_name));
    EXPECT_TRUE(second.isAnotherRunning(m_name));

    first.reset();

    EXPECT_TRUE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, ObjectThatIsAskedAgainFindsItselfAndLosesItsHandle) {
    Mutexes const mutexes;
    SingleInstance instance;
    EXPECT_FALSE(instance.isAnotherRunning(m_name));
    test::OwnedHandle const first(mutexes.last());
    auto const before = test::handleCount();

    EXPECT_TRUE(instance.isAnotherRunning(m_name));

    EXPECT_EQ(before + 1, test::handleCount());
    EXPECT_NE(first.get(), mutexes.last());
    EXPECT_TRUE(isOpen(first.get()));
}

TEST_F(SingleInstances, NameWithABackslashCountsAsRunning) {
    test::FailingImport<decltype(CloseHandle)> const closes("CloseHandle", TRUE, 0);

    EXPECT_TRUE(SingleInstance().isAnotherRunning(m_name + L"\\part"));

    EXPECT_EQ(0u, closes.calls());
}

// Something else of that name stands in the way of the mutex.
TEST_F(SingleInstances, MutexThatCannotBeMadeCountsAsRunning) {
    test::OwnedHandle const event(CreateEventW(nullptr, TRUE, FALSE, mutexNameOf(m_name).c_str()));
    test::HandleLeakCheck const check;

    EXPECT_TRUE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, MutexThatCannotBeMadeCountsAsRunningWhateverTheError) {
    test::FailingImport<decltype(CreateMutexW)> const hook("CreateMutexW", nullptr, ERROR_SUCCESS);

    EXPECT_TRUE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, OnlyTheErrorOfTheMutexCounts) {
    SingleInstance instance;
    SetLastError(ERROR_ALREADY_EXISTS);

    EXPECT_FALSE(instance.isAnotherRunning(m_name));
}

TEST_F(SingleInstances, OtherErrorsBesideAHandleDoNotCount) {
    test::ImportHook<decltype(CreateMutexW)> const hook(
        "CreateMutexW", [&](LPSECURITY_ATTRIBUTES attributes, BOOL owner, LPCWSTR name) {
            auto* const mutex = hook.original()(attributes, owner, name);
            SetLastError(ERROR_ACCESS_DENIED);
            return mutex;
        });

    EXPECT_FALSE(SingleInstance().isAnotherRunning(m_name));
}

TEST_F(SingleInstances, FirstOneLooksForNoWindow) {
    Window const window(m_name);
    Raises const raises;
    test::ImportHook<decltype(FindWindowW)> const finds(
        "FindWindowW", [](LPCWSTR, LPCWSTR) -> HWND { return nullptr; });

    EXPECT_FALSE(SingleInstance().isAnotherRunning(m_name));

    EXPECT_EQ(0u, finds.calls());
    EXPECT_THAT(raises.calls(), ElementsAre());
}

TEST_F(SecondInstance, LooksForAWindowOfItsNameInAnyClass) {
    LPCWSTR askedClass = L"";
    std::wstring askedTitle;
    test::ImportHook<decltype(FindWindowW)> const finds(
        "FindWindowW", [&](LPCWSTR windowClass, LPCWSTR title) -> HWND {
            askedClass = windowClass;
            askedTitle = title;
            return nullptr;
        });
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_EQ(nullptr, askedClass);
    EXPECT_EQ(m_name, askedTitle);
    EXPECT_THAT(raises.calls(), ElementsAre());
}

TEST_F(SecondInstance, AsksForNoExecutableWithoutAWindow) {
    Executables const executables(ModuleName(L"a"), ModuleName(L"a"));

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_THAT(executables.questions, ElementsAre());
}

TEST_F(SecondInstance, RaisesTheWindowOfItsOwnExecutable) {
    Window const window(m_name);
    Window const cover(m_name + L" cover");
    SetForegroundWindow(cover.handle());
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_THAT(raises.calls(), raised(window));
    EXPECT_EQ(window.handle(), GetForegroundWindow());
}

TEST_F(SecondInstance, LeavesTheWindowOfAnotherExecutable) {
    Window const window(m_name);
    Executables const executables(ModuleName(L"C:\\b.exe"), ModuleName(L"C:\\a.exe"));
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_THAT(raises.calls(), ElementsAre());
}

// The platform of these tests tells the executable of no other process's window.
TEST_F(SecondInstance, LeavesAWindowWhoseExecutableIsNotTold) {
    auto const child = showWindow.start({m_name});
    ASSERT_TRUE(child->waitForOutput("shown"));
    ASSERT_NE(nullptr, FindWindowW(nullptr, m_name.c_str()));
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_THAT(raises.calls(), ElementsAre());
}

namespace {

struct Comparison {
    char const* situation;
    ModuleName theirs;
    ModuleName ours;
    bool raises;
};

void PrintTo(Comparison const& comparison, std::ostream* stream) {
    *stream << comparison.situation;
}

class ExecutableOfTheWindow : public SecondInstance,
                              public testing::WithParamInterface<Comparison> {};

} // namespace

TEST_P(ExecutableOfTheWindow, DecidesWhetherItIsRaised) {
    Window const window(m_name);
    Executables const executables(GetParam().theirs, GetParam().ours);
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    if (GetParam().raises)
        EXPECT_THAT(raises.calls(), raised(window));
    else
        EXPECT_THAT(raises.calls(), ElementsAre());
}

// A name that could not be told is an empty text.
INSTANTIATE_TEST_SUITE_P(
    , ExecutableOfTheWindow,
    testing::Values(
        Comparison{"DiffersInCase", ModuleName(L"C:\\A.exe"), ModuleName(L"C:\\a.exe"), false},
        Comparison{
            "DiffersInTheLengthReported", ModuleName(L"C:\\a.exe", 4), ModuleName(L"C:\\a.exe"),
            false},
        Comparison{
            "IsEqualUpToTheLengthReported", ModuleName(L"C:\\b.exe", 3),
            ModuleName(L"C:\\a.exe", 3), true},
        Comparison{"IsNotToldAsTheOwnIsNot", ModuleName(L""), ModuleName(L""), true},
        Comparison{"IsToldAsTheOwnIsNot", ModuleName(L"C:\\a.exe"), ModuleName(L""), false}),
    [](auto const& row) { return std::string(row.param.situation); });

TEST_F(SecondInstance, AsksForBothExecutablesInOneBuffer) {
    Window const window(m_name);
    Executables const executables(ModuleName(L"a"), ModuleName(L"a"));
    Raises const raises;

    m_instance.isAnotherRunning(m_name);

    EXPECT_THAT(
        executables.questions,
        ElementsAre(Call{"theirs", window.handle(), 260}, Call{"ours", nullptr, 260}));
    ASSERT_EQ(2u, executables.buffers.size());
    EXPECT_EQ(executables.buffers[0], executables.buffers[1]);
}

TEST_F(SecondInstance, LooksForTheWindowAlsoWhereTheMutexCannotBeMade) {
    Window const window(m_name);
    test::FailingImport<decltype(CreateMutexW)> const hook("CreateMutexW", nullptr, 5);
    Raises const raises;

    EXPECT_TRUE(m_instance.isAnotherRunning(m_name));

    EXPECT_THAT(raises.calls(), raised(window));
}

TEST_F(SingleInstances, AssignmentSharesTheHandle) {
    std::vector<HANDLE> closed;
    Mutexes const mutexes;
    HANDLE taken = nullptr;
    {
        SingleInstance source;
        SingleInstance target;
        source.isAnotherRunning(m_name);
        taken = mutexes.last();
        EXPECT_EQ(&target, &(target = source));
        test::ImportHook<decltype(CloseHandle)> const hook("CloseHandle", [&](HANDLE handle) {
            closed.push_back(handle);
            return closed.size() == 1 ? hook.original()(handle) : FALSE;
        });
        target.~SingleInstance();
        source.~SingleInstance();
        // Their destructors come once more, and are to find nothing.
        new (&target) SingleInstance;
        new (&source) SingleInstance;
    }

    EXPECT_THAT(closed, ElementsAre(taken, taken));
    EXPECT_FALSE(isNameTaken());
}

TEST_F(SingleInstances, AssignmentLeavesTheOldHandleOpen) {
    Mutexes const mutexes;
    SingleInstance target;
    target.isAnotherRunning(m_name);
    test::OwnedHandle const old(mutexes.last());

    target = SingleInstance();

    EXPECT_TRUE(isOpen(old.get()));
    EXPECT_TRUE(isNameTaken());
}

TEST_F(SingleInstances, AskingLeavesNoHandleOpen) {
    Window const window(m_name);
    SingleInstance first;
    first.isAnotherRunning(m_name);
    { SingleInstance().isAnotherRunning(m_name); }
    test::HandleLeakCheck const check;

    for (int count = 0; count < 10; ++count)
        SingleInstance().isAnotherRunning(m_name);
}

TEST_F(SingleInstances, FailedAllocationComesOutAndLeavesTheNameFree) {
    Window const window(m_name);

    // Each time round the window is there, and it is this executable's own.
    auto const failed = test::failEachAllocation([&] {
        SingleInstance first;
        SingleInstance second;
        first.isAnotherRunning(m_name);
        second.isAnotherRunning(m_name);
    });

    EXPECT_GT(failed, 3u);
    EXPECT_FALSE(isNameTaken());
}

class BringWindowToFront : public testing::Test {
  protected:
    std::wstring const m_title = ownName(L"Ostrel Front ");
    Raises m_raises;
};

TEST_F(BringWindowToFront, FindsNone) {
    EXPECT_FALSE(BringWindowToFrontIfFound(m_title));

    EXPECT_THAT(m_raises.calls(), ElementsAre());
}

TEST_F(BringWindowToFront, RaisesTheOneItFinds) {
    Window const window(m_title);
    Window const cover(m_title + L" cover");
    SetForegroundWindow(cover.handle());

    EXPECT_TRUE(BringWindowToFrontIfFound(m_title));

    EXPECT_THAT(m_raises.calls(), raised(window));
    EXPECT_EQ(window.handle(), GetForegroundWindow());
}

TEST_F(BringWindowToFront, RaisesTheWindowOfAnyExecutable) {
    auto const child = showWindow.start({m_title});
    ASSERT_TRUE(child->waitForOutput("shown"));
    Executables const executables(ModuleName(L"C:\\b.exe"), ModuleName(L"C:\\a.exe"));

    EXPECT_TRUE(BringWindowToFrontIfFound(m_title));

    EXPECT_EQ(2u, m_raises.calls().size());
    EXPECT_THAT(executables.questions, ElementsAre());
}

TEST_F(BringWindowToFront, LooksForTheTitleInAnyClass) {
    LPCWSTR askedClass = L"";
    std::wstring askedTitle;
    test::ImportHook<decltype(FindWindowW)> const finds(
        "FindWindowW", [&](LPCWSTR windowClass, LPCWSTR title) -> HWND {
            askedClass = windowClass;
            askedTitle = title;
            return nullptr;
        });

    EXPECT_FALSE(BringWindowToFrontIfFound(m_title));

    EXPECT_EQ(nullptr, askedClass);
    EXPECT_EQ(m_title, askedTitle);
}
