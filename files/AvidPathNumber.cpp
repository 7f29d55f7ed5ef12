#include "vrUtils/Files/AvidPathNumber.h"

#include "foundation/Handle.h"
#include "foundation/Mutex.h"
#include "foundation/Platform.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace {

// The number last given for each base, from the first call to the end of the process.
class AvidPathNumbers {
  public:
    int lastGiven(std::wstring const& base) {
        std::lock_guard const guard(m_lock);
        auto const entry = m_numbers.find(base);
        return entry == m_numbers.end() ? 1 : entry->second;
    }

    // The text is made before the lock is released. A caller that was overtaken by another one does
    // not take the base back to its own number.
    std::wstring give(std::wstring base, int number) {
        std::lock_guard const guard(m_lock);
        auto& last = m_numbers[std::move(base)];
        last = std::max(last, number);
        return std::to_wstring(number);
    }

  private:
    vrUtils::Mutex m_lock;
    std::map<std::wstring, int> m_numbers;
};

// Counting ends with the first entry beyond the limit. What cannot be searched is not there yet, or
// shows its failure when it is used.
bool isFull(std::wstring const& folder, int limit) {
    WIN32_FIND_DATAW entry;
    vrUtils::FindOwner const search(FindFirstFileW((folder + L"\\*").c_str(), &entry));
    if (!search)
        return false;
    auto count = 1;
    while (count <= limit && FindNextFileW(search.get(), &entry))
        ++count;
    return count > limit;
}

} // namespace

std::wstring get_avid_path_number(std::wstring base, int limit) {
    static AvidPathNumbers avidPathNumbers;

    auto number = avidPathNumbers.lastGiven(base);
    auto folder = base + std::to_wstring(number);
    while (isFull(folder, limit)) {
        ++number;
        folder = base + std::to_wstring(number);
    }
    // One that is there already does no harm.
    CreateDirectoryW(folder.c_str(), nullptr);
    return avidPathNumbers.give(std::move(base), number);
}
