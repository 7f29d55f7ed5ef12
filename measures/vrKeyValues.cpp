#include "vrUtils/KeyValue.h"

#include "measures/Value.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <map>
#include <tuple>
#include <typeinfo>
#include <utility>

namespace vrUtils::KeyValue {

namespace {

// The order of std::less, without a call into the C runtime for every key on the way.
struct ByCharacterCodes {
    bool operator()(std::wstring const& left, std::wstring const& right) const noexcept {
        auto const* const leftUnits = left.data();
        auto const* const rightUnits = right.data();
        auto const common = std::min(left.size(), right.size());
        for (std::size_t index = 0; index < common; ++index)
            if (leftUnits[index] != rightUnits[index])
                return leftUnits[index] < rightUnits[index];
        return left.size() < right.size();
    }
};

// The classes have no heirs, so that this tells as much as a dynamic_cast, and costs far less.
template <typename Concrete>
bool is(Value const& value) noexcept {
    return typeid(value) == typeid(Concrete);
}

// The value of a class that was replaced last, for the next one to move in: memory would cost more
// than all the rest of a replacement.
template <typename Concrete>
class Spare {
  public:
    boost::shared_ptr<Concrete> fill(typename Concrete::Held const& value) {
        if (!m_value)
            return boost::make_shared<Concrete>(value);
        m_value->refill(value);
        return std::move(m_value);
    }

    // Only a value that no other store shares may be filled anew.
    void keep(boost::shared_ptr<Value>&& replaced) noexcept {
        if (!replaced || !is<Concrete>(*replaced) || replaced.use_count() != 1)
            return;
        if (static_cast<Concrete const&>(*replaced).isWorthKeeping())
            m_value = boost::static_pointer_cast<Concrete>(std::move(replaced));
    }

  private:
    boost::shared_ptr<Concrete> m_value;
};

} // namespace

class vrKeyValues::Entries {
  public:
    Entries() = default;

    // Shares the values, which do not change while a store has them.
    Entries(Entries const& other) : m_values(other.m_values) {}

    Entries& operator=(Entries const&) = delete;

    template <typename Concrete>
    void set(std::wstring const& key, typename Concrete::Held const& value) {
        auto& spare = std::get<Spare<Concrete>>(m_spares);
        boost::shared_ptr<Value> made = spare.fill(value);
        m_values[key].swap(made);
        spare.keep(std::move(made));
    }

    void remove(std::wstring const& key) { m_values.erase(key); }

    bool contains(std::wstring const& key) const { return position(key) != m_values.end(); }

    Value const& find(std::wstring const& key) const {
        auto const entry = position(key);
        if (entry == m_values.end())
            throw KeyValueNotPresentException();
        return *entry->second;
    }

    template <typename Concrete>
    typename Concrete::Held get(std::wstring const& key) const {
        auto const& value = find(key);
        if (!is<Concrete>(value))
            throw KeyValueWrongTypeException();
        return static_cast<Concrete const&>(value).get();
    }

  private:
    using Values = std::map<std::wstring, boost::shared_ptr<Value>, ByCharacterCodes>;

    // Asks whether the keys are equal, which costs less than the comparison that ends a map's own
    // search.
    Values::const_iterator position(std::wstring const& key) const {
        auto const entry = m_values.lower_bound(key);
        return entry != m_values.end() && entry->first == key ? entry : m_values.end();
    }

    Values m_values;
    std::tuple<Spare<StringValue>, Spare<Uint32Value>, Spare<BoolValue>> m_spares;
};

vrKeyValues::vrKeyValues() : m_entries(std::make_unique<Entries>()) {}

vrKeyValues const& vrKeyValues::operator=(vrKeyValues const& other) {
    if (m_entries != other.m_entries)
        m_entries = std::make_unique<Entries>(*other.m_entries);
    return *this;
}

vrKeyValues::~vrKeyValues() = default;

void vrKeyValues::Set(std::wstring const& key, std::wstring const& value) {
    m_entries->set<StringValue>(key, value);
}

void vrKeyValues::Set(std::wstring const& key, unsigned long value) {
    m_entries->set<Uint32Value>(key, value);
}

void vrKeyValues::Set(std::wstring const& key, bool value) {
    m_entries->set<BoolValue>(key, value);
}

void vrKeyValues::Remove(std::wstring const& key) { m_entries->remove(key); }

bool vrKeyValues::Contains(std::wstring const& key) const { return m_entries->contains(key); }

std::wstring vrKeyValues::GetStringValue(std::wstring const& key) const {
    return m_entries->get<StringValue>(key);
}

unsigned long vrKeyValues::GetUint32Value(std::wstring const& key) const {
    return m_entries->get<Uint32Value>(key);
}

bool vrKeyValues::GetBoolValue(std::wstring const& key) const {
    return m_entries->get<BoolValue>(key);
}

std::wstring vrKeyValues::TypeName(std::wstring const& key) const {
    return m_entries->find(key).TypeName();
}

} // namespace vrUtils::KeyValue
