// A path from its text to all its parts and its normal text, for a network and a drive path.

#include "benchmarks/Candidate.h"

#include "vrUtils/Path.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <list>
#include <string>
#include <string_view>

#ifdef PEER_BOOST
#include <boost/filesystem/path.hpp>
#endif
#ifdef PEER_POCO
#include <Poco/Path.h>
#include <Poco/UnicodeConverter.h>
#endif

namespace {

// Not constant, so that no candidate can work a part of its answer out beforehand.
std::wstring uncText = L"\\\\server\\share\\Media\\Evening News\\clip.mxf";
std::wstring driveText = L"C:\\Media\\clip.mxf";

std::size_t ours(std::wstring const& text) {
    vr::Path path(text, vr::Path::eFile);
    auto const& parts = path.components();
    return parts.root().size() + parts.drive().size() + parts.folderText().size() +
           parts.folders().size() + parts.fileName().size() + parts.extension().size() +
           path.str().size();
}

// What std::filesystem and Boost have in common.
template <class FilePath>
std::size_t fileSystemPath(std::wstring const& text) {
    FilePath const path(text);
    auto const folderText = path.relative_path().parent_path();
    std::list<std::wstring> folders;
    for (auto const& folder : folderText)
        folders.push_back(folder.native());
    return path.root_name().native().size() + path.root_directory().native().size() +
           folderText.native().size() + folders.size() + path.stem().native().size() +
           path.extension().native().size() +
           path.lexically_normal().make_preferred().native().size();
}

#ifdef PEER_POCO
std::wstring widened(std::string const& text) {
    std::wstring wide;
    Poco::UnicodeConverter::toUTF16(text, wide);
    return wide;
}

std::size_t poco(std::wstring const& text) {
    std::string narrow;
    Poco::UnicodeConverter::toUTF8(text, narrow);
    Poco::Path const path(narrow, Poco::Path::PATH_WINDOWS);
    std::list<std::wstring> folders;
    std::wstring folderText;
    for (int depth = 0; depth < path.depth(); ++depth) {
        folders.push_back(widened(path.directory(depth)));
        folderText.append(folders.back()).append(1, L'\\');
    }
    return widened(path.getNode()).size() + widened(path.getDevice()).size() + folderText.size() +
           folders.size() + widened(path.getBaseName()).size() +
           widened(path.getExtension()).size() +
           widened(path.toString(Poco::Path::PATH_WINDOWS)).size();
}
#endif

// Where the parts of a well-formed path begin and end: one pass from the front, one from the back.
struct PartViews {
    std::wstring_view root, drive, folderText, name, extension;

    explicit PartViews(std::wstring_view text) {
        if (text.size() > 2 && text[0] == L'\\' && text[1] == L'\\')
            root = text.substr(0, text.find(L'\\', 2) + 1);
        else if (text.size() > 2 && text[1] == L':')
            drive = text.substr(0, 3);
        text.remove_prefix(root.size() + drive.size());
        auto const nameStart = text.rfind(L'\\') + 1;
        folderText = text.substr(0, nameStart);
        auto const fullName = text.substr(nameStart);
        auto const dot = std::min(fullName.rfind(L'.'), fullName.size());
        name = fullName.substr(0, dot);
        extension = fullName.substr(dot);
    }
};

// What a careful programmer writes for one program: every part a string of its own.
struct OwnedParts {
    std::wstring root, drive, folderText, name, extension, normalText;
    std::list<std::wstring> folders;

    explicit OwnedParts(std::wstring text) {
        std::replace(text.begin(), text.end(), L'/', L'\\');
        PartViews const views(text);
        root = views.root;
        drive = views.drive;
        name = views.name;
        extension = views.extension;
        folderText.reserve(views.folderText.size());
        for (auto rest = views.folderText; !rest.empty();) {
            auto const end = rest.find(L'\\');
            if (end > 0)
                folderText.append(folders.emplace_back(rest.substr(0, end))).append(1, L'\\');
            rest.remove_prefix(end + 1);
        }
        normalText.reserve(text.size());
        normalText.append(root).append(drive).append(folderText).append(name).append(extension);
    }
};

std::size_t hand(std::wstring const& text) {
    OwnedParts const parts(text);
    return parts.root.size() + parts.drive.size() + parts.folderText.size() + parts.folders.size() +
           parts.name.size() + parts.extension.size() + parts.normalText.size();
}

// The least work: views into the text, and the one string that is asked for as a string.
std::size_t limit(std::wstring const& text) {
    PartViews views(text);
    std::array<std::wstring_view, 32> folders;
    std::size_t count = 0;
    for (auto rest = views.folderText; !rest.empty();) {
        folders[count] = rest.substr(0, rest.find(L'\\'));
        rest.remove_prefix(folders[count++].size() + 1);
    }
    benchmark::DoNotOptimize(views);
    benchmark::DoNotOptimize(folders);
    std::wstring normalText(text);
    benchmark::DoNotOptimize(normalText);
    return count;
}

void row(char const* name, std::wstring const& text) {
    using benchmarks::candidate;
    candidate(name, "ours", [&] { return ours(text); });
    candidate(name, "std", [&] { return fileSystemPath<std::filesystem::path>(text); });
#ifdef PEER_BOOST
    candidate(name, "boost", [&] { return fileSystemPath<boost::filesystem::path>(text); });
#endif
#ifdef PEER_POCO
    candidate(name, "poco", [&] { return poco(text); });
#endif
    candidate(name, "hand", [&] { return hand(text); });
    candidate(name, "limit", [&] { return limit(text); });
}

} // namespace

void benchmarks::registerCandidates() {
    row("parse-unc", uncText);
    row("parse-drive", driveText);
}
