#ifndef MEASURES_VALUE_H
#define MEASURES_VALUE_H

#include <cstdint>
#include <string>

namespace vrUtils::KeyValue {

// What a store holds: made once, never changed, so that stores may share it. There is no virtual
// destructor: the shared pointer that owns a value was made from its own class, and remembers it.
class Value {
  public:
    virtual std::wstring TypeName() const = 0;

  protected:
    Value() = default;
    Value(Value const&) = delete;
    Value& operator=(Value const&) = delete;
    ~Value() = default;
};

class StringValue final : public Value {
  public:
    using Held = std::wstring;

    explicit StringValue(std::wstring const& value) : m_value(value) {}

    std::wstring TypeName() const override { return L"String"; }

    std::wstring const& get() const noexcept { return m_value; }

  private:
    std::wstring m_value;
};

class Uint32Value final : public Value {
  public:
    using Held = unsigned long;

    explicit Uint32Value(unsigned long value) : m_value(value) {}

    std::wstring TypeName() const override { return L"Uint32"; }

    unsigned long get() const noexcept { return m_value; }

  private:
    std::uint32_t m_value;
};

class BoolValue final : public Value {
  public:
    using Held = bool;

    explicit BoolValue(bool value) : m_value(value) {}

    std::wstring TypeName() const override { return L"Bool"; }

    bool get() const noexcept { return m_value; }

  private:
    bool m_value;
};

} // namespace vrUtils::KeyValue

#endif
