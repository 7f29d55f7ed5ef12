#include "tests/support/ChildAction.h"

#include "tests/support/LimitedLife.h"

#include <shellapi.h>

#include <map>

namespace test {

namespace {

constexpr wchar_t request[] = L"--child-action";

// The exit code of a process that is to do what it does not know.
constexpr int unknownAction = 64;

std::map<std::wstring, ChildAction::Function>& actions() {
    static std::map<std::wstring, ChildAction::Function> actions;
    return actions;
}

struct LocalCloser {
    void operator()(void* block) const noexcept { LocalFree(block); }
};

std::vector<std::wstring> ownArguments() {
    int count = 0;
    std::unique_ptr<wchar_t*, LocalCloser> const arguments(
        CommandLineToArgvW(GetCommandLineW(), &count));
    return {arguments.get(), arguments.get() + count};
}

} // namespace

ChildAction::ChildAction(std::wstring name, Function function) : m_name(std::move(name)) {
    actions()[m_name] = function;
}

std::unique_ptr<ChildProcess>
ChildAction::start(Arguments const& arguments, ChildStart start) const {
    start.program = testProgram();
    Arguments all{request, m_name};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return std::make_unique<ChildProcess>(all, start);
}

std::optional<int> ChildAction::runRequested() {
    auto const arguments = ownArguments();
    if (arguments.size() < 3 || arguments[1] != request)
        return std::nullopt;
    limitLife();
    auto const action = actions().find(arguments[2]);
    if (action == actions().end())
        return unknownAction;
    return action->second({arguments.begin() + 3, arguments.end()});
}

} // namespace test
