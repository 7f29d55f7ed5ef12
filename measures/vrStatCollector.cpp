#include "vrUtils/vrStatCollector.h"

#include "measures/CriticalSection.h"
#include "measures/Utf8.h"

#include <json/json.h>

#include <map>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>

namespace {

// JsonCpp writes into a stream, which does not tell of a failed allocation but cuts the text.
std::string wholeText(Json::Value const& object) {
    constexpr std::string_view end = "}\n";

    auto text = object.toStyledString();
    if (text.size() < end.size() || text.compare(text.size() - end.size(), end.size(), end) != 0)
        throw std::bad_alloc();
    return text;
}

} // namespace

class vrStatCollector::Table {
  public:
    void name(int id, std::wstring const& name) {
        auto key = vrUtils::wideToUtf8(name);
        std::lock_guard const guard(m_lock);
        m_stats[id].key = std::move(key);
    }

    void add(int id, std::uint64_t amount) {
        std::lock_guard const guard(m_lock);
        m_stats[id].value += amount;
    }

    void set(int id, std::uint64_t value) {
        std::lock_guard const guard(m_lock);
        m_stats[id].value = value;
    }

    std::uint64_t get(int id) {
        std::lock_guard const guard(m_lock);
        return m_stats[id].value;
    }

    std::wstring asJson() {
        std::lock_guard const guard(m_lock);
        Json::Value members(Json::objectValue);
        for (auto const& [id, stat] : m_stats)
            members[stat.key] = Json::Value::UInt64(stat.value);
        return vrUtils::utf8ToWide(wholeText(members));
    }

  private:
    struct StatEntry {
        // The name in UTF-8, as nothing but the JSON asks for it.
        std::string key;
        std::uint64_t value = 0;
    };

    std::map<int, StatEntry> m_stats;
    vrUtils::CriticalSection m_lock;
};

vrStatCollector& vrStatCollector::Singleton() {
    static vrStatCollector instance;
    return instance;
}

vrStatCollector::vrStatCollector() : m_table(std::make_unique<Table>()) {
    SetStatName(0x10001, L"BytesWritten");
    SetStatName(0x10000, L"BytesRead");
    SetStatName(0x10002, L"FramesTransferred");
    SetStatName(0x10003, L"Transcoded");
    SetStatName(0x10004, L"TransferStatus");
}

vrStatCollector::~vrStatCollector() = default;

void vrStatCollector::SetStatName(int id, std::wstring const* name) { m_table->name(id, *name); }

void vrStatCollector::AddStat(int id, unsigned long amount) { m_table->add(id, amount); }

void vrStatCollector::AddStat(int id, std::uint64_t amount) { m_table->add(id, amount); }

void vrStatCollector::SetStat(int id, unsigned long value) { m_table->set(id, value); }

std::uint64_t vrStatCollector::GetStat(int id) { return m_table->get(id); }

std::wstring vrStatCollector::asJson() { return m_table->asJson(); }
