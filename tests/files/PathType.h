#ifndef TESTS_FILES_PATHTYPE_H
#define TESTS_FILES_PATHTYPE_H

#include "tests/support/PathPrinter.h"

#include <gmock/gmock.h>

#include <string>

// What a path denotes. It shows in how a text with a dot parses once the path has given its type
// to it.
inline vr::Path::eType typeOf(vr::Path const& path) {
    auto dotted = vr::Path::folder(L"a.b");
    dotted += path.removeCommonRoot(path);
    return dotted.components().extension().empty() ? vr::Path::eFolder : vr::Path::eFile;
}

// The text of a path as it was entered, which its normal form may hide.
inline std::wstring textOf(vr::Path path) { return path.modify(vr::Path::eFile).get(); }

MATCHER_P(HasType, type, type == vr::Path::eFile ? "is a file's" : "is a folder's") {
    return typeOf(arg) == type;
}

// Matches a path of this normal form and type.
inline testing::Matcher<vr::Path const&> IsPath(std::wstring const& text, vr::Path::eType type) {
    return testing::AllOf(
        testing::ResultOf(
            "normal form", [](vr::Path const& path) { return path.components().wholePath(); },
            text),
        HasType(type));
}

#endif
