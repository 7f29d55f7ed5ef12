#include "vrUtils/ProcessStatus.h"

#include "foundation/Mutex.h"

#include <memory>
#include <mutex>

namespace vrUtils::ProcessStatus {

namespace {

Mutex lock;

// Never changed in place, so that a reader has the whole text without the lock. Spelt as the
// system's programs know it.
std::shared_ptr<std::wstring const> current = std::make_shared<std::wstring const>(L"intialising");

} // namespace

std::wstring status() { return *std::atomic_load(&current); }

void status(std::wstring const& text) {
    std::lock_guard const guard(lock);
    std::atomic_store(&current, std::make_shared<std::wstring const>(text));
}

} // namespace vrUtils::ProcessStatus
