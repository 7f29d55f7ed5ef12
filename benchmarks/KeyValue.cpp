// A store of typed values beside the containers that a user would pick instead: one value read and
// written, of sixteen that are there.

#include "benchmarks/Candidate.h"

#include "vrUtils/KeyValue.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <variant>

#include <boost/property_tree/ptree.hpp>

namespace {

using Variant = std::variant<std::wstring, std::uint32_t, bool>;

std::wstring const numberKey = L"framesTransferred";
std::wstring const textKey = L"sourceFolder";
std::wstring const flagKey = L"transcoded";
std::wstring const text = L"\\\\media01\\share\\Day 1";
std::uint32_t number = 1500;
bool flag = true;

constexpr wchar_t const* otherKeys[] = {L"clipName",   L"destination", L"frameRate", L"inPoint",
                                        L"outPoint",   L"owner",       L"priority",  L"retriesLeft",
                                        L"sourceHost", L"sourceType",  L"started",   L"timecode",
                                        L"trackCount"};

class Ours {
  public:
    Ours() {
        for (auto const* key : otherKeys)
            m_values.Set(key, number);
        setNumber();
        setText();
        setFlag();
    }

    int setNumber() {
        m_values.Set(numberKey, number);
        return 0;
    }

    int setText() {
        m_values.Set(textKey, text);
        return 0;
    }

    int setFlag() {
        m_values.Set(flagKey, flag);
        return 0;
    }

    std::uint32_t getNumber() { return m_values.GetUint32Value(numberKey); }

    std::wstring getText() { return m_values.GetStringValue(textKey); }

    bool getFlag() { return m_values.GetBoolValue(flagKey); }

  private:
    vrUtils::KeyValue::vrKeyValues m_values;
};

template <class Container>
class Variants {
  public:
    Variants() {
        for (auto const* key : otherKeys)
            m_values[key] = number;
        setNumber();
        setText();
        setFlag();
    }

    int setNumber() {
        m_values[numberKey] = number;
        return 0;
    }

    int setText() {
        m_values[textKey] = text;
        return 0;
    }

    int setFlag() {
        m_values[flagKey] = flag;
        return 0;
    }

    std::uint32_t getNumber() { return std::get<std::uint32_t>(m_values.at(numberKey)); }

    std::wstring getText() { return std::get<std::wstring>(m_values.at(textKey)); }

    bool getFlag() { return std::get<bool>(m_values.at(flagKey)); }

  private:
    Container m_values;
};

// It keeps every value as a text.
class PropertyTree {
  public:
    PropertyTree() {
        for (auto const* key : otherKeys)
            m_values.put(key, number);
        setNumber();
        setText();
        setFlag();
    }

    int setNumber() {
        m_values.put(numberKey, number);
        return 0;
    }

    int setText() {
        m_values.put(textKey, text);
        return 0;
    }

    int setFlag() {
        m_values.put(flagKey, flag);
        return 0;
    }

    std::uint32_t getNumber() { return m_values.get<std::uint32_t>(numberKey); }

    std::wstring getText() { return m_values.get<std::wstring>(textKey); }

    bool getFlag() { return m_values.get<bool>(flagKey); }

  private:
    boost::property_tree::wptree m_values;
};

template <class Store>
void store(char const* name) {
    static Store values;
    using benchmarks::candidate;
    candidate("key-value-get-number", name, [] { return values.getNumber(); });
    candidate("key-value-get-text", name, [] { return values.getText(); });
    candidate("key-value-get-flag", name, [] { return values.getFlag(); });
    candidate("key-value-set-number", name, [] { return values.setNumber(); });
    candidate("key-value-set-text", name, [] { return values.setText(); });
    candidate("key-value-set-flag", name, [] { return values.setFlag(); });
}

} // namespace

void benchmarks::registerCandidates() {
    store<Ours>("ours");
    store<Variants<std::map<std::wstring, Variant>>>("map");
    store<Variants<std::unordered_map<std::wstring, Variant>>>("unordered-map");
    store<PropertyTree>("property-tree");
}
