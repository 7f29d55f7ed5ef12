// A line of ten fields split at its separator.

#include "benchmarks/Candidate.h"

#include "foundation/Text.h"

#include <array>
#include <list>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

namespace {

std::wstring text = L"clip;0815;Interview;1080i;25;00:01:30;server01;day 1;mxf;done";

std::list<std::wstring> ours() { return vrUtils::Strings::splitOnChar(text, L';'); }

template <class Fields>
Fields boostSplit() {
    Fields fields;
    boost::algorithm::split(fields, text, [](wchar_t c) { return c == L';'; });
    return fields;
}

// The same answer as ours: a list, without empty fields.
std::list<std::wstring> boostSplitLikeOurs() {
    std::list<std::wstring> fields;
    boost::algorithm::split(
        fields, text, boost::algorithm::is_any_of(L";"), boost::algorithm::token_compress_on);
    return fields;
}

std::vector<std::wstring> getlines() {
    std::vector<std::wstring> fields;
    std::wistringstream stream(text);
    for (std::wstring field; std::getline(stream, field, L';');)
        fields.push_back(field);
    return fields;
}

// What a careful programmer writes for one program.
template <class Fields>
Fields hand() {
    Fields fields;
    std::size_t start = 0;
    for (;;) {
        auto const end = text.find(L';', start);
        if (end == std::wstring::npos)
            break;
        if (end > start)
            fields.emplace_back(text, start, end - start);
        start = end + 1;
    }
    if (start < text.size())
        fields.emplace_back(text, start);
    return fields;
}

struct FieldViews {
    std::array<std::wstring_view, 16> fields;
    std::size_t count = 0;
};

FieldViews limit() {
    FieldViews views;
    auto const* start = text.data();
    auto const* const end = start + text.size();
    for (auto const* c = start; c != end; ++c) {
        if (*c != L';')
            continue;
        views.fields[views.count++] = {start, static_cast<std::size_t>(c - start)};
        start = c + 1;
    }
    views.fields[views.count++] = {start, static_cast<std::size_t>(end - start)};
    return views;
}

} // namespace

void benchmarks::registerCandidates() {
    candidate("split", "ours", ours);
    candidate("split", "boost-list", boostSplit<std::list<std::wstring>>);
    candidate("split", "boost-vector", boostSplit<std::vector<std::wstring>>);
    candidate("split", "boost", boostSplitLikeOurs);
    candidate("split", "getline", getlines);
    candidate("split", "hand-list", hand<std::list<std::wstring>>);
    candidate("split", "hand-vector", hand<std::vector<std::wstring>>);
    candidate("split", "limit", limit);
}
