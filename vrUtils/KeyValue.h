#ifndef VRUTILS_KEYVALUE_H
#define VRUTILS_KEYVALUE_H

/// @file
/// Typed values by name.

#include "vrUtils/vrException.h"

#include <memory>
#include <string>

namespace vrUtils::KeyValue {

/// There is no value of this name: code 0 and no message, the class tells all.
class VRUTILS_API KeyValueNotPresentException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit KeyValueNotPresentException(vrException const& failure) : vrException(failure) {}
};

/// The value has another type: code 0 and no message, the class tells all.
class VRUTILS_API KeyValueWrongTypeException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit KeyValueWrongTypeException(vrException const& failure) : vrException(failure) {}
};

/// A small dictionary of strings, numbers and truth values. A read names the type that it expects:
/// one of another type fails, and nothing is converted.
///
/// Keys are told apart by their character codes, so case counts; any text is a key, the empty one
/// too. Nothing is stored outside the process, and there is no walk over the keys.
///
/// A store is copied by assignment to another store only; each then goes its own way. One store is
/// not for writes beside any other access; two stores may be used by two threads, also if one was
/// assigned to the other.
///
/// @code
/// vrKeyValues job;
/// job.Set(L"name", L"clip1");
/// job.Set(L"frames", 1500u);
/// job.GetUint32Value(L"frames"); // 1500
/// job.GetStringValue(L"frames"); // throws KeyValueWrongTypeException
/// @endcode
class VRUTILS_API vrKeyValues {
  public:
    /// An empty store.
    vrKeyValues();

    vrKeyValues(vrKeyValues const&) = delete;

    /// Takes over all that the other store holds, and drops what was here. A store may be assigned
    /// to itself.
    vrKeyValues const& operator=(vrKeyValues const& other);

    ~vrKeyValues();

    /// Stores a string, whatever was there under this key before.
    /// @throws std::bad_alloc the store then is as it was
    void Set(std::wstring const& key, std::wstring const& value);

    /// Stores a number, as above.
    void Set(std::wstring const& key, unsigned long value);

    /// Stores a truth value, as above.
    void Set(std::wstring const& key, bool value);

    /// Stores a string, as above; not null. Without this a literal would be taken for a bool.
    void Set(std::wstring const& key, wchar_t const* value) { Set(key, std::wstring(value)); }

    /// Stores a number, as above.
    void Set(std::wstring const& key, unsigned int value) {
        Set(key, static_cast<unsigned long>(value));
    }

    /// Drops a value. That there is none is no failure.
    void Remove(std::wstring const& key);

    /// Whether there is a value, of whatever type.
    bool Contains(std::wstring const& key) const;

    /// @throws KeyValueNotPresentException if there is no such key
    /// @throws KeyValueWrongTypeException if its value is no string
    std::wstring GetStringValue(std::wstring const& key) const;

    /// @throws KeyValueNotPresentException if there is no such key
    /// @throws KeyValueWrongTypeException if its value is no number
    unsigned long GetUint32Value(std::wstring const& key) const;

    /// @throws KeyValueNotPresentException if there is no such key
    /// @throws KeyValueWrongTypeException if its value is no truth value
    bool GetBoolValue(std::wstring const& key) const;

    /// The type of a value by name: "String", "Uint32" or "Bool".
    /// @throws KeyValueNotPresentException if there is no such key
    std::wstring TypeName(std::wstring const& key) const;

  private:
    class Entries;

    std::unique_ptr<Entries> m_entries;
};

} // namespace vrUtils::KeyValue

#endif
