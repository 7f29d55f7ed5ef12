// Two paths that differ in case only, found equal. The paths are parsed already, as those are that a
// program keeps and compares.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/Path.h"

#include <algorithm>
#include <cwchar>
#include <string>

#include <boost/algorithm/string/predicate.hpp>

namespace {

std::wstring left = L"\\\\server01\\Projects\\Evening News\\Clips\\Interview.mxf";
std::wstring right = L"\\\\SERVER01\\projects\\EVENING NEWS\\clips\\interview.MXF";
vr::Path leftPath(left, vr::Path::eFile);
vr::Path rightPath(right, vr::Path::eFile);

bool ours() { return leftPath == rightPath; }

bool boostEquals() { return boost::algorithm::iequals(left, right); }

bool runtime() { return _wcsicmp(left.c_str(), right.c_str()) == 0; }

bool localeCompare() { return lstrcmpiW(left.c_str(), right.c_str()) == 0; }

bool ordinal() {
    return CompareStringOrdinal(
               left.data(), static_cast<int>(left.size()), right.data(),
               static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

// ASCII alone, which is less than is asked for.
bool limit() {
    auto const folded = [](wchar_t c) {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c | 0x20) : c;
    };
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [&](wchar_t one, wchar_t other) {
               return folded(one) == folded(other);
           });
}

} // namespace

void benchmarks::registerCandidates() {
    leftPath.components();
    rightPath.components();
    candidate("equality", "ours", ours);
    candidate("equality", "boost", boostEquals);
    candidate("equality", "_wcsicmp", runtime);
    candidate("equality", "lstrcmpiW", localeCompare);
    candidate("equality", "CompareStringOrdinal", ordinal);
    candidate("equality", "limit", limit);
}
