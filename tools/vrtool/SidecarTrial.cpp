#include "tools/vrtool/SidecarTrial.h"

#include "tools/vrtool/LargeStack.h"
#include "tools/vrtool/OwnedHandle.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Storage/Sidecar.h"

#include <algorithm>
#include <regex>
#include <string_view>

namespace {

// What makes an entry no plain file, and so no candidate.
constexpr DWORD excludedAttributes =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY |
    FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_SPARSE_FILE | FILE_ATTRIBUTE_REPARSE_POINT |
    FILE_ATTRIBUTE_OFFLINE | FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_VIRTUAL;

// The steps in their order; each is null until it has been made.
Facts noSteps(SidecarRule const& rule) {
    return {
        {"movie", toUtf8(rule.movie)},
        {"regex", toUtf8(rule.regex)},
        {"matches", {}},
        {"captures", {}},
        {"filledName", {}},
        {"exactPath", {}},
        {"exactExists", {}},
        {"matchingEntries", {}},
        {"passedOver", {}},
        {"sidecar", {}},
        {"verdict", {}},
    };
}

Fact& step(Facts& facts, std::string_view name) {
    return *std::find_if(
        facts.begin(), facts.end(), [=](Fact const& fact) { return fact.name == name; });
}

Json::Value const& valueOf(Facts& facts, std::string_view name) { return step(facts, name).value; }

// @return whether the expression could be made and tried; if not, the step has the reason
template <typename Try>
bool tryExpression(
    Fact& step, std::wstring const& expression, std::size_t longestText, Try const& attempt) {
    if (!fitsLargeStack(expression, longestText)) {
        step.failure = L"too long to be tried step by step";
        return false;
    }
    try {
        attempt(std::wregex(expression, std::regex::ECMAScript | std::regex::icase));
        return true;
    } catch (std::regex_error const& failure) {
        step.failure = L"the expression cannot be used: " + fromUtf8(failure.what());
        return false;
    }
}

// The name with the captures in place of `\0` to `\9`. What is put in is not looked at again, and a
// backslash in front of anything else stays.
std::wstring filled(std::wstring const& name, std::wsmatch const& captures) {
    std::wstring result;
    for (std::size_t position = 0; position < name.size(); ++position) {
        bool const isLast = position + 1 == name.size();
        auto const next = isLast ? L'\0' : name[position + 1];
        // What stands before the digits becomes a very large number.
        auto const digit = static_cast<std::size_t>(next - L'0');
        bool const isPlaceholder = name[position] == L'\\' && digit <= 9 &&
                                   digit < captures.size() && captures[digit].matched;
        if (isPlaceholder) {
            result += captures[digit].str();
            ++position;
        } else {
            result += name[position];
        }
    }
    return result;
}

Json::Value textsOf(std::wsmatch const& captures) {
    Json::Value texts(Json::arrayValue);
    for (auto const& capture : captures)
        texts.append(capture.matched ? Json::Value(toUtf8(capture.str())) : Json::Value());
    return texts;
}

// @return the filled name; empty if the movie's name does not match
std::wstring matchMovie(SidecarRule const& rule, Facts& facts) {
    std::wstring name;
    auto& matches = step(facts, "matches");
    tryExpression(matches, rule.regex, rule.movie.size(), [&](std::wregex const& expression) {
        std::wsmatch captures;
        matches.value = std::regex_match(rule.movie, captures, expression);
        if (!matches.value.asBool())
            return;
        step(facts, "captures").value = textsOf(captures);
        name = filled(rule.name, captures);
        step(facts, "filledName").value = toUtf8(name);
    });
    return name;
}

bool isPlainFile(WIN32_FIND_DATAW const& entry) {
    return entry.cFileName[0] != L'.' && (entry.dwFileAttributes & excludedAttributes) == 0;
}

bool isFolderItself(std::wstring_view name) { return name == L"." || name == L".."; }

void matchEntries(SidecarRule const& rule, std::wregex const& expression, Facts& facts) {
    auto& matching = step(facts, "matchingEntries");
    auto& passedOver = step(facts, "passedOver");
    matching.value = passedOver.value = Json::Value(Json::arrayValue);

    WIN32_FIND_DATAW entry;
    OwnedSearch const search(FindFirstFileW((rule.folder + rule.pattern).c_str(), &entry));
    auto const error = GetLastError();
    if (search.get() == INVALID_HANDLE_VALUE) {
        if (error != ERROR_FILE_NOT_FOUND)
            matching.failure = systemText(error);
        return;
    }
    do {
        if (!isFolderItself(entry.cFileName) && std::regex_match(entry.cFileName, expression))
            (isPlainFile(entry) ? matching : passedOver).value.append(toUtf8(entry.cFileName));
    } while (FindNextFileW(search.get(), &entry));
}

// Up to the step that decides.
void goThroughSteps(SidecarRule const& rule, Facts& facts) {
    auto const name = matchMovie(rule, facts);
    if (valueOf(facts, "filledName").isNull())
        return;

    auto const exact = rule.folder + name;
    bool const exists = GetFileAttributesW(exact.c_str()) != INVALID_FILE_ATTRIBUTES;
    step(facts, "exactPath").value = toUtf8(exact);
    step(facts, "exactExists").value = exists;
    if (exists)
        return;
    tryExpression(
        step(facts, "matchingEntries"), name, MAX_PATH,
        [&](std::wregex const& expression) { matchEntries(rule, expression, facts); });
}

std::string verdictOf(Facts& facts) {
    if (valueOf(facts, "sidecar").isNull()) {
        if (valueOf(facts, "matches") == Json::Value(false))
            return "the movie's name does not match";
        return valueOf(facts, "matchingEntries").isNull() ? "an expression cannot be used"
                                                          : "no entry matches";
    }
    if (valueOf(facts, "exactExists") == Json::Value(true))
        return "the exact name";
    auto const count = valueOf(facts, "matchingEntries").size();
    if (count == 0)
        return "found by the library alone";
    return count == 1 ? "the only match" : "the first of " + std::to_string(count) + " matches";
}

} // namespace

Facts trialOf(SidecarRule const& rule) {
    auto facts = noSteps(rule);
    onLargeStack([&] { goThroughSteps(rule, facts); });

    auto const sidecar = vrUtils::Storage::FindSidecarFile(
        rule.movie, rule.regex, rule.folder, rule.name, rule.pattern);
    if (!sidecar.empty())
        step(facts, "sidecar").value = toUtf8(sidecar);
    step(facts, "verdict").value = verdictOf(facts);
    return facts;
}
