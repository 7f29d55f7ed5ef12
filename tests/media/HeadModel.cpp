#include "tests/media/HeadModel.h"

#include "tests/media/ExtendedRateModel.h"
#include "tests/media/ParsingFailures.h"

#include <optional>
#include <set>

namespace test {

namespace {

class Walk {
  public:
    Walk(Bytes const& head, bool isBigEndian) : m_head(head), m_isBigEndian(isBigEndian) {}

    // The characters of a name, or nothing once the walk has failed.
    std::string name() {
        auto const start = advance(4);
        return start ? std::string(m_head.begin() + *start, m_head.begin() + *start + 4) : "";
    }

    std::uint32_t length() {
        auto const start = advance(4);
        std::uint32_t length = 0;
        for (int i = 0; start && i < 4; ++i)
            length |= std::uint32_t{m_head[static_cast<std::size_t>(*start + i)]}
                      << 8 * (m_isBigEndian ? 3 - i : i);
        return length;
    }

    // The value of the chunk, with zeros behind it; nothing if there is none.
    std::optional<Bytes> find(std::string const& wanted) {
        std::set<std::int64_t> starts;
        while (starts.insert(m_position).second) {
            auto const found = name();
            auto const stated = length();
            auto const start = advance(stated);
            if (!start)
                return std::nullopt;
            if (found == wanted) {
                auto const size = static_cast<std::int64_t>(m_head.size());
                auto const end = std::min(size, *start + stated);
                Bytes value(m_head.begin() + *start, m_head.begin() + end);
                value.resize(value.size() + 18);
                return value;
            }
        }
        return std::nullopt;
    }

    bool hasFailed() const { return m_hasFailed; }

  private:
    std::optional<std::int64_t> advance(std::uint32_t length) {
        auto const start = m_position;
        auto const end = (start + length) % 0x100000000;
        m_hasFailed = m_hasFailed || end >= static_cast<std::int64_t>(m_head.size());
        if (m_hasFailed)
            return std::nullopt;
        m_position = end;
        return start;
    }

    Bytes const& m_head;
    bool m_isBigEndian;
    std::int64_t m_position = 0;
    bool m_hasFailed = false;
};

Outcome failed(wchar_t const* message) {
    Outcome outcome;
    outcome.failure = message;
    return outcome;
}

} // namespace

Outcome modelOfWav(Bytes const& head) {
    Walk walk(head, false);
    auto const name = walk.name();
    walk.length();
    if (walk.hasFailed())
        return failed(insufficientData);
    if (name != "RIFF")
        return failed(L"Missing RIFF tag");
    auto const type = walk.name();
    if (!walk.hasFailed() && type != "WAVE")
        return failed(L"Missing WAVE tag");
    auto const format = walk.find("fmt ");
    if (!format)
        return failed(insufficientData);
    auto const& value = *format;
    Outcome outcome;
    outcome.samplesPerSecond = value[4] + (value[5] + (value[6] + value[7] * 256u) * 256u) * 256u;
    outcome.bitsPerSample = value[14] + value[15] * 256u;
    return outcome;
}

Outcome modelOfAiff(Bytes const& head) {
    Walk walk(head, true);
    auto const name = walk.name();
    walk.length();
    if (walk.hasFailed())
        return failed(insufficientData);
    if (name != "FORM")
        return failed(L"Missing FORM tag");
    auto const type = walk.name();
    if (!walk.hasFailed() && type != "AIFF" && type != "AIFC")
        return failed(L"Missing AIFF/AIFC tag");
    auto const common = walk.find("COMM");
    if (!common)
        return failed(insufficientData);
    auto const& value = *common;
    Outcome outcome;
    outcome.samplesPerSecond = modelOfExtendedRate(&value[8]);
    outcome.bitsPerSample = value[6] * 256u + value[7];
    return outcome;
}

} // namespace test
