#include "tools/vrtool/LargeStack.h"

#include "tools/vrtool/OwnedHandle.h"

#include <algorithm>
#include <cwchar>
#include <exception>
#include <system_error>

namespace {

constexpr std::size_t stackSize = std::size_t{512} * 1024 * 1024;

// More than the most wasteful expressions take for each character of the text and the expression.
constexpr double stackOfOneStep = 768;

// How often the compiler writes out what stands before a brace: `{3}`, `{2,5}`.
double timesWrittenOut(std::wstring const& expression) {
    auto times = 1.0;
    for (auto brace = expression.find(L'{'); brace != std::wstring::npos;
         brace = expression.find(L'{', brace + 1)) {
        wchar_t* end = nullptr;
        auto const least = std::wcstoul(&expression[brace + 1], &end, 10);
        auto const most = *end == L',' ? std::wcstoul(end + 1, nullptr, 10) : 0;
        times *= static_cast<double>(std::max({least, most, 1ul}));
    }
    return times;
}

struct Task {
    std::function<void()> const& work;
    std::exception_ptr failure;
};

DWORD WINAPI runTask(void* parameter) {
    auto& task = *static_cast<Task*>(parameter);
    try {
        task.work();
    } catch (...) {
        task.failure = std::current_exception();
    }
    return 0;
}

} // namespace

bool fitsLargeStack(std::wstring const& expression, std::size_t longestText) {
    auto const steps = (static_cast<double>(longestText) + 1) *
                       (static_cast<double>(expression.size()) + 1) * timesWrittenOut(expression);
    return steps * stackOfOneStep < static_cast<double>(stackSize);
}

void onLargeStack(std::function<void()> const& work) {
    Task task{work, nullptr};
    // Only what is used of the stack takes memory.
    OwnedHandle const thread(CreateThread(
        nullptr, stackSize, runTask, &task, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    auto const error = GetLastError();
    if (!thread)
        throw std::system_error(static_cast<int>(error), std::system_category(), "no stack");
    WaitForSingleObject(thread.get(), INFINITE);
    if (task.failure)
        std::rethrow_exception(task.failure);
}
