#include "tests/support/LogRecorder.h"

#include "tests/support/WideText.h"

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <regex>

namespace test {

namespace {

constexpr std::size_t mostValues = 8;
constexpr std::size_t longestText = 65536;
constexpr std::uintptr_t pageSize = 4096;

std::atomic<LogRecorder*> currentRecorder{nullptr};

// The parts of a directive.
enum Part : std::size_t { flagsAndWidth = 1, precision, size, conversion };

using Directives = std::wsregex_iterator;

Directives directivesOf(std::wstring const& format) {
    // A percent sign that stands for itself is a match too, lest its second half begin a directive.
    static std::wregex const directive(
        LR"(%([-+ #0]{0,5}[0-9]{0,4})(?:\.([0-9]{0,4}))?(h|ll|l|I64)?([diuxXcs])|%%)");
    return Directives(format.begin(), format.end(), directive);
}

bool takesValue(std::wsmatch const& directive) { return directive[conversion].matched; }

// The text at an address that may be none. The platform copies it, since it answers an address that
// cannot be read where a plain access would end the process.
std::wstring textAt(std::uint64_t address, std::size_t limit) {
    std::wstring text;
    std::wstring::size_type end = 0;
    while (text.size() < limit) {
        auto const restOfPage = pageSize - address % pageSize;
        auto const count = std::min(std::max(restOfPage / 2, std::uintptr_t{1}), limit - end);
        text.resize(end + count);
        if (!ReadProcessMemory(
                GetCurrentProcess(), reinterpret_cast<void const*>(address), text.data() + end,
                count * sizeof(wchar_t), nullptr)) {
            text.resize(end);
            return text;
        }
        auto const zero = text.find(L'\0', end);
        if (zero != std::wstring::npos) {
            text.resize(zero);
            return text;
        }
        end += count;
        address += count * sizeof(wchar_t);
    }
    return text;
}

std::size_t lengthLimit(std::wsmatch const& directive) {
    if (!directive[precision].matched)
        return longestText;
    auto const digits = directive[precision].str();
    return digits.empty() ? 0 : std::stoul(digits);
}

std::vector<LogValue> valuesOf(std::wstring const& format, va_list words) {
    std::vector<LogValue> values;
    for (auto directive = directivesOf(format);
         directive != Directives() && values.size() < mostValues; ++directive) {
        if (!takesValue(*directive))
            continue;
        LogValue value;
        value.word = va_arg(words, std::uint64_t);
        if (directive->str(conversion) == L"s")
            value.text = textAt(value.word, lengthLimit(*directive));
        values.push_back(value);
    }
    return values;
}

// The number that a directive makes of an argument, of which it may use only the lower bits.
template <typename Narrow, typename Normal, typename Wide>
Wide numberOf(std::wstring const& size, std::uint64_t word) {
    if (size == L"ll" || size == L"I64")
        return static_cast<Wide>(word);
    if (size == L"h")
        return static_cast<Narrow>(word);
    return static_cast<Normal>(word);
}

std::wstring written(std::wsmatch const& directive, LogValue const& value) {
    auto const kind = directive.str(conversion);
    if (kind == L"s")
        return value.text;
    if (kind == L"c")
        return {static_cast<wchar_t>(value.word)};

    auto const precisionText = directive[precision].matched ? L"." + directive.str(precision) : L"";
    auto const wide = L"%" + directive.str(flagsAndWidth) + precisionText + L"ll" + kind;
    auto const length = directive.str(size);
    std::wstring buffer(10100, L'\0');
    int const count =
        kind == L"d" || kind == L"i"
            ? std::swprintf(
                  buffer.data(), buffer.size(), wide.c_str(),
                  numberOf<std::int16_t, std::int32_t, long long>(length, value.word))
            : std::swprintf(
                  buffer.data(), buffer.size(), wide.c_str(),
                  numberOf<std::uint16_t, std::uint32_t, unsigned long long>(length, value.word));
    buffer.resize(static_cast<std::size_t>(std::max(count, 0)));
    return buffer;
}

std::wstring orEmpty(wchar_t const* text) { return text ? text : L""; }

} // namespace

std::wstring LogLine::text() const {
    std::wstring text;
    auto copied = format.begin();
    auto value = values.begin();
    for (auto directive = directivesOf(format); directive != Directives(); ++directive) {
        text.append(copied, (*directive)[0].first);
        copied = (*directive)[0].second;
        if (!takesValue(*directive))
            text += L'%';
        else if (value != values.end())
            text += written(*directive, *value++);
        else
            text += directive->str();
    }
    return text.append(copied, format.end());
}

void PrintTo(LogLine const& line, std::ostream* stream) {
    *stream << "level " << line.level << ", module " << utf8(line.module);
    if (line.file && line.line)
        *stream << ", " << utf8(*line.file) << ':' << *line.line;
    *stream << ", text \"" << utf8(line.text()) << "\", format \"" << utf8(line.format) << '"';
}

LogRecorder::LogRecorder(HMODULE module) {
    bool const hasLineCall = hasImport("VL_WriteLog", module);
    bool const hasDebugLineCall = hasImport("VL_WriteDebugLog", module);
    if (!hasLineCall && !hasDebugLineCall)
        throw std::runtime_error("the module imports no call of the log");

    m_previous = currentRecorder.exchange(this);
    if (hasLineCall)
        m_lineCall.emplace(
            "VL_WriteLog", reinterpret_cast<ImportPatch::Function>(&recordLine), module);
    if (hasDebugLineCall)
        m_debugLineCall.emplace(
            "VL_WriteDebugLog", reinterpret_cast<ImportPatch::Function>(&recordDebugLine), module);
}

LogRecorder::~LogRecorder() {
    m_debugLineCall.reset();
    m_lineCall.reset();
    currentRecorder = m_previous;
}

std::vector<LogLine> LogRecorder::lines() const {
    std::lock_guard const lock(m_mutex);
    return m_lines;
}

std::vector<std::wstring> LogRecorder::texts() const {
    std::vector<std::wstring> texts;
    for (auto const& line : lines())
        texts.push_back(line.text());
    return texts;
}

void LogRecorder::clear() {
    std::lock_guard const lock(m_mutex);
    m_lines.clear();
}

bool LogRecorder::waitForLines(std::size_t count, std::chrono::milliseconds time) const {
    std::unique_lock lock(m_mutex);
    return m_added.wait_for(lock, time, [&] { return m_lines.size() >= count; });
}

void LogRecorder::record(LogLine line, va_list values) {
    line.values = valuesOf(line.format, values);
    LogRecorder& recorder = *currentRecorder;
    {
        std::lock_guard const lock(recorder.m_mutex);
        recorder.m_lines.push_back(std::move(line));
    }
    recorder.m_added.notify_all();
}

void LogRecorder::recordLine(
    char level, wchar_t const* module, wchar_t const* format, ...) noexcept {
    auto const lastError = GetLastError();
    LogLine line;
    line.level = level;
    line.module = orEmpty(module);
    line.format = orEmpty(format);
    va_list values;
    va_start(values, format);
    record(std::move(line), values);
    va_end(values);
    SetLastError(lastError);
}

void LogRecorder::recordDebugLine(
    char level, wchar_t const* module, wchar_t const* file, int number, wchar_t const* format,
    ...) noexcept {
    auto const lastError = GetLastError();
    LogLine line;
    line.level = level;
    line.module = orEmpty(module);
    line.file = orEmpty(file);
    line.line = number;
    line.format = orEmpty(format);
    va_list values;
    va_start(values, format);
    record(std::move(line), values);
    va_end(values);
    SetLastError(lastError);
}

} // namespace test
