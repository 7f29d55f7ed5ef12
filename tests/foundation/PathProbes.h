#ifndef TESTS_FOUNDATION_PATHPROBES_H
#define TESTS_FOUNDATION_PATHPROBES_H

#include "vrUtils/Path.h"

#include <string>

// The text as it was entered, which only the builder shows.
inline std::wstring enteredText(vr::Path& path, vr::Path::eType type) {
    return path.modify(type).get();
}

// The type of a path shows in how a dotted text parses that takes it over.
inline bool isOfAFile(vr::Path const& path) {
    auto probe = vr::Path::folder(L"a.b");
    probe += path.removeCommonRoot(path);
    return probe.components().extension() == L".b";
}

#endif
