#ifndef VORRANELOG_LOGTEXT_H
#define VORRANELOG_LOGTEXT_H

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

namespace VorraneLog {

// A growing UTF-8 text that is always fit for one line of the log: lone surrogates become U+FFFD,
// and characters that could end a line, separate columns or act on a terminal show as <U+000A>.
//
// It is bounded, and short texts need no memory from the heap. What has no room, or no memory, is
// dropped from there on, and the text then ends in "(cut)".
class LogText {
  public:
    static constexpr std::size_t mostBytes = 256 * 1024;

    void append(std::wstring_view text) noexcept;

    // Appends characters that are known to be printable ASCII, or the tab between two columns.
    void appendAscii(std::string_view text) noexcept;
    void appendNumber(long long number) noexcept;
    void appendRepeated(char character, std::size_t count) noexcept;

    std::string_view view() const noexcept { return {bytes_.data(), bytes_.size()}; }

  private:
    void appendBytes(std::string_view text) noexcept;
    void appendCodePoint(char32_t codePoint) noexcept;
    void appendVisibly(char32_t control) noexcept;
    void cut() noexcept;

    static constexpr std::size_t bytesInside = 1024;
    fmt::basic_memory_buffer<char, bytesInside> bytes_;
    bool isCut_ = false;
};

} // namespace VorraneLog

#endif
