#ifndef VORRANELOG_LOGTEXT_H
#define VORRANELOG_LOGTEXT_H

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace VorraneLog {

// A growing UTF-8 text that is always fit for one line of the log: lone surrogates become U+FFFD,
// and characters that could end a line, separate columns or act on a terminal show as <U+000A>.
//
// It is bounded, and short texts need no memory from the heap. What has no room, or no memory, is
// dropped from there on, and the text then ends in "(cut)".
class LogText {
  public:
    static constexpr std::size_t mostBytes = std::size_t{256} * 1024;

    LogText() = default;
    LogText(LogText const&) = delete;
    LogText& operator=(LogText const&) = delete;

    void append(std::wstring_view text) noexcept;

    // Appends characters that are known to be printable ASCII, or the tab between two columns.
    void appendAscii(std::string_view text) noexcept;
    void appendNumber(long long number) noexcept;
    void appendRepeated(char character, std::size_t count) noexcept;

    std::string_view view() const noexcept { return {bytes(), m_size}; }

  private:
    void appendBytes(std::string_view text) noexcept;
    void appendCodePoint(char32_t codePoint) noexcept;
    void appendVisibly(char32_t control) noexcept;
    bool grow(std::size_t needed) noexcept;
    void cut() noexcept;

    char const* bytes() const noexcept { return m_grown ? m_grown.get() : m_inside.data(); }
    char* bytes() noexcept { return m_grown ? m_grown.get() : m_inside.data(); }

    struct Release {
        void operator()(char* memory) const noexcept { std::free(memory); }
    };

    std::array<char, 1024> m_inside;
    std::unique_ptr<char, Release> m_grown;
    std::size_t m_capacity = sizeof m_inside;
    std::size_t m_size = 0;
    bool m_isCut = false;
};

} // namespace VorraneLog

#endif
