#include "vrUtils/KeyValue.h"

#include "measures/Value.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <map>

namespace vrUtils::KeyValue {

class vrKeyValues::Entries {
  public:
    template <typename Concrete>
    void set(std::wstring const& key, typename Concrete::Held const& value) {
        boost::shared_ptr<Value const> made = boost::make_shared<Concrete>(value);
        m_values[key].swap(made);
    }

    void remove(std::wstring const& key) { m_values.erase(key); }

    bool contains(std::wstring const& key) const { return m_values.count(key) != 0; }

    Value const& find(std::wstring const& key) const {
        auto const entry = m_values.find(key);
        if (entry == m_values.end())
            throw KeyValueNotPresentException();
        return *entry->second;
    }

    template <typename Concrete>
    typename Concrete::Held get(std::wstring const& key) const {
        auto const* const value = dynamic_cast<Concrete const*>(&find(key));
        if (!value)
            throw KeyValueWrongTypeException();
        return value->get();
    }

  private:
    std::map<std::wstring, boost::shared_ptr<Value const>> m_values;
};

vrKeyValues::vrKeyValues() : m_entries(std::make_unique<Entries>()) {}

vrKeyValues const& vrKeyValues::operator=(vrKeyValues const& other) {
    // The stores share the values, which never change.
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
