#include "vrUtils/counter.h"

namespace vrUtils {

namespace {

std::atomic<std::int32_t> onlyCount{0};

} // namespace

void counter::Increment(CounterIDs id) const noexcept {
    if (auto* const count = getInstance(id))
        ++*count;
}

bool counter::Decrement(CounterIDs id) const noexcept {
    auto* const count = getInstance(id);
    return count && --*count == 0;
}

// Null for a number that has no count.
std::atomic<std::int32_t>* counter::getInstance(CounterIDs id) noexcept {
    return id == 0 ? &onlyCount : nullptr;
}

} // namespace vrUtils
