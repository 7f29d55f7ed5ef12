#include "storage/MatchingStack.h"

#include "foundation/Platform.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <regex>

namespace vrUtils::Storage {

namespace {

constexpr double largestStack = 1024.0 * 1024 * 1024;
constexpr double stackOfOtherWork = 1024.0 * 1024;

// Twice what the most wasteful expressions took for each character of the text and the expression.
constexpr double stackOfOneStep = 768;

// A repetition with numbers is written out when it is compiled: `(ab){3}` becomes `(ab)(ab)(ab)`.
// The product of all numbers in braces covers those inside one another.
double timesWrittenOut(std::wstring const& expression) {
    auto times = 1.0;
    for (auto brace = expression.find(L'{'); brace != std::wstring::npos;
         brace = expression.find(L'{', brace + 1)) {
        auto largest = 1.0;
        auto number = 0.0;
        for (auto next = brace + 1;
             next < expression.size() && expression[next] != L'}' && expression[next] != L'{';
             ++next) {
            auto const character = expression[next];
            auto const isDigit = character >= L'0' && character <= L'9';
            number = isDigit ? number * 10 + (character - L'0') : 0;
            largest = std::max(largest, number);
        }
        times *= largest;
    }
    return times;
}

// One piece of work on its way to another stack and back.
struct Task {
    std::function<void()> const& work;
    void* caller;
    std::exception_ptr failure;
};

void CALLBACK runTask(void* parameter) {
    auto& task = *static_cast<Task*>(parameter);
    try {
        task.work();
    } catch (...) {
        task.failure = std::current_exception();
    }
    SwitchToFiber(task.caller);
}

// The calling thread as a fiber, for as long as it has to be one.
class CallingFiber {
  public:
    CallingFiber()
        : m_isNew(!IsThreadAFiber()),
          m_fiber(
              m_isNew ? ConvertThreadToFiberEx(nullptr, FIBER_FLAG_FLOAT_SWITCH)
                      : GetCurrentFiber()) {
        if (!m_fiber)
            throw std::bad_alloc();
    }

    CallingFiber(CallingFiber const&) = delete;
    CallingFiber& operator=(CallingFiber const&) = delete;

    ~CallingFiber() {
        if (m_isNew)
            ConvertFiberToThread();
    }

    void* get() const noexcept { return m_fiber; }

  private:
    bool m_isNew;
    void* m_fiber;
};

struct DeleteFiberOwned {
    void operator()(void* fiber) const noexcept { DeleteFiber(fiber); }
};

} // namespace

double matchingStackNeeded(std::wstring const& expression, std::size_t longestText) {
    auto const steps = (static_cast<double>(longestText) + 1) *
                       (static_cast<double>(expression.size()) + 1) * timesWrittenOut(expression);
    return stackOfOtherWork + steps * stackOfOneStep;
}

void onMatchingStack(
    std::wstring const& expression, std::size_t longestText, std::function<void()> const& work) {
    auto const needed = matchingStackNeeded(expression, longestText);
    if (needed > largestStack)
        throw std::regex_error(std::regex_constants::error_stack);

    CallingFiber const caller;
    Task task{work, caller.get(), nullptr};
    std::unique_ptr<void, DeleteFiberOwned> const fiber(CreateFiberEx(
        0, static_cast<std::size_t>(needed), FIBER_FLAG_FLOAT_SWITCH, runTask, &task));
    if (!fiber)
        throw std::bad_alloc();
    SwitchToFiber(fiber.get());
    if (task.failure)
        std::rethrow_exception(task.failure);
}

} // namespace vrUtils::Storage
