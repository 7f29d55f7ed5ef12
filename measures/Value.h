#ifndef MEASURES_VALUE_H
#define MEASURES_VALUE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace vrUtils::KeyValue {

// What a store holds. It never changes while a store has it, so that stores may share it. There is
// no virtual destructor: the shared pointer that owns a value was made from its own class, and
// remembers it.
class Value {
  public:
    Value(Value const&) = delete;
    Value& operator=(Value const&) = delete;

    virtual std::wstring TypeName() const = 0;

  protected:
    Value() = default;
    ~Value() = default;
};

// Each class can also be filled anew, for a value that no store has any more.

class StringValue final : public Value {
  public:
    using Held = std::wstring;

    explicit StringValue(std::wstring const& value) : m_value(value) {}

    std::wstring TypeName() const override { return L"String"; }

    std::wstring const& get() const noexcept { return m_value; }

    void refill(std::wstring const& value) { m_value = value; }

    // A long text is not worth its memory.
    bool isWorthKeeping() const noexcept { return m_value.capacity() <= longestKept; }

  private:
    static constexpr std::size_t longestKept = 512;

    std::wstring m_value;
};

class Uint32Value final : public Value {
  public:
    using Held = unsigned long;

    explicit Uint32Value(unsigned long value) noexcept : m_value(value) {}

    std::wstring TypeName() const override { return L"Uint32"; }

    unsigned long get() const noexcept { return m_value; }

    void refill(unsigned long value) noexcept { m_value = value; }

    bool isWorthKeeping() const noexcept { return true; }

  private:
    std::uint32_t m_value;
};

class BoolValue final : public Value {
  public:
    using Held = bool;

    explicit BoolValue(bool value) noexcept : m_value(value) {}

    std::wstring TypeName() const override { return L"Bool"; }

    bool get() const noexcept { return m_value; }

    void refill(bool value) noexcept { m_value = value; }

    bool isWorthKeeping() const noexcept { return true; }

  private:
    bool m_value;
};

} // namespace vrUtils::KeyValue

#endif
