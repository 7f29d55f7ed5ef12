// A long text of lines, as a file or a program's output has them, broken into its lines.

#include "benchmarks/Candidate.h"

#include "vrUtils/Strings.h"

#include <list>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#ifdef PEER_POCO
#include <Poco/StringTokenizer.h>
#endif

namespace {

std::wstring linesOf(std::size_t characters) {
    std::wstring_view const line =
        L"2024-05-17 18:03:22.117  transfer of clip 0815 is complete\r\n";
    std::wstring text;
    text.reserve(characters + line.size());
    while (text.size() < characters)
        text += line.substr(text.size() % 7);
    return text;
}

std::list<std::wstring> ours(std::wstring const& text) {
    return vrUtils::Strings::BreakMultiLineString(text);
}

std::vector<std::wstring> boostSplit(std::wstring const& text) {
    std::vector<std::wstring> lines;
    boost::algorithm::split(
        lines, text, boost::algorithm::is_any_of(L"\r\n"), boost::algorithm::token_compress_on);
    return lines;
}

std::list<std::wstring> getlines(std::wstring const& text) {
    std::list<std::wstring> lines;
    std::wistringstream stream(text);
    for (std::wstring line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == L'\r')
            line.pop_back();
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

// The least work: every line seen once.
std::size_t limit(std::wstring const& text) {
    std::size_t lines = 0;
    bool within = false;
    for (auto const c : text) {
        bool const isBreak = c == L'\r' || c == L'\n';
        lines += within && isBreak;
        within = !isBreak;
    }
    return lines;
}

void row(char const* name, std::wstring const& text) {
    using benchmarks::candidate;
    candidate(name, "ours", [&] { return ours(text); });
    candidate(name, "getline", [&] { return getlines(text); });
    candidate(name, "boost", [&] { return boostSplit(text); });
#ifdef PEER_POCO
    // POCO knows narrow text only.
    candidate(name, "poco", [narrow = std::string(text.begin(), text.end())] {
        return Poco::StringTokenizer(narrow, "\r\n", Poco::StringTokenizer::TOK_IGNORE_EMPTY);
    });
#endif
    candidate(name, "limit", [&] { return limit(text); });
}

} // namespace

void benchmarks::registerCandidates() {
    static std::wstring const oneMi = linesOf(std::size_t{1} << 20);
    static std::wstring const sixteenMi = linesOf(std::size_t{16} << 20);
    row("lines-1Mi", oneMi);
    row("lines-16Mi", sixteenMi);
}
