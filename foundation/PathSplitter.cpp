#include "vrUtils/Path.h"

#include "foundation/PortNumber.h"
#include "foundation/Text.h"

#include <algorithm>

namespace vr {

using namespace vrUtils::Strings;

// The parts as they stand in the text, one directly behind the other but for a dropped stream.
// Separators may still be of either kind here; they become backslashes where the parts are
// assembled.
struct PathSplitter::RawParts {
    void settleExtension(bool isFile);
    void settleDrive(std::wstring_view source);
    void settleRoot();

    std::wstring_view root;
    std::wstring_view drive;
    std::wstring_view dir;
    std::wstring_view name;
    std::wstring_view ext;
};

namespace {

// Two neighbours as one: they stand side by side in one text.
std::wstring_view joined(std::wstring_view left, std::wstring_view right) {
    return right.empty() ? left : std::wstring_view(left.data(), left.size() + right.size());
}

// Where the first slash stands, or the length. `find_first_of` would make a call for each character.
std::size_t findSlash(std::wstring_view text) {
    auto const slash = std::find_if(text.begin(), text.end(), [](wchar_t c) { return isSlash(c); });
    return static_cast<std::size_t>(slash - text.begin());
}

bool isSlashPair(std::wstring_view text) {
    return text.size() >= 2 && isSlash(text[0]) && isSlash(text[1]);
}

// The pieces of a root between its colons.
std::list<std::wstring> hostAndPort(std::wstring const& root) {
    return splitOnChar(trimSlashes(root), L':');
}

wchar_t* copyTo(wchar_t* out, std::wstring_view text) {
    return std::replace_copy(text.begin(), text.end(), out, L'/', L'\\');
}

} // namespace

PathSplitter::PathSplitter(std::wstring const& text, bool isFile) {
    auto const source = upToZero(text);
    auto parts = _splitpath(source);
    parts.settleExtension(isFile);
    parts.settleDrive(source);
    parts.settleRoot();
    assemble(parts);
}

PathSplitter::PathSplitter(PathSplitter const&) = default;
PathSplitter& PathSplitter::operator=(PathSplitter const&) = default;
PathSplitter::~PathSplitter() = default;

// Not the runtime's routine of that name: the drive takes its separator along, and a colon in the
// last part ends the name.
PathSplitter::RawParts PathSplitter::_splitpath(std::wstring_view text) {
    RawParts parts;
    std::size_t scanStart = 0;
    if (text.size() >= 2 && text[1] == L':') {
        scanStart = text.size() > 2 && isSlash(text[2]) ? 3 : 2;
        parts.drive = text.substr(0, scanStart);
    }

    auto nameStart = text.size();
    while (nameStart > scanStart && !isSlash(text[nameStart - 1]))
        --nameStart;
    auto const last = text.substr(nameStart);
    auto const nameEnd = std::min(last.rfind(L':'), last.size());
    auto const dot = last.substr(0, nameEnd).rfind(L'.');

    parts.dir = text.substr(scanStart, nameStart - scanStart);
    if (dot == std::wstring_view::npos) {
        parts.name = last.substr(0, nameEnd);
    } else {
        parts.name = last.substr(0, dot);
        parts.ext = last.substr(dot);
    }
    return parts;
}

void PathSplitter::RawParts::settleExtension(bool isFile) {
    // Only a stream can bring a second dot along: the extension begins at the last one.
    if (isFile && !ext.empty()) {
        auto const lastDot = ext.rfind(L'.');
        name = joined(name, ext.substr(0, lastDot));
        ext.remove_prefix(lastDot);
    }
    // A dot in a folder's name is no extension, and neither is a dot alone.
    if (!isFile || ext == L".") {
        name = ext.empty() ? name : joined(name, ext);
        ext = {};
    }
}

// Without a separator behind the colon a path is relative to the drive's current folder, and the
// letter becomes text like any other.
void PathSplitter::RawParts::settleDrive(std::wstring_view source) {
    if (drive.empty())
        return;
    auto const behindColon = source.find(L':') + 1;
    if (behindColon < source.size() && !isSlash(source[behindColon])) {
        dir = joined(drive, dir);
        drive = {};
    }
}

void PathSplitter::RawParts::settleRoot() {
    bool const isHostAlone =
        drive.empty() && dir.size() == 2 && isSlashPair(dir) && !name.empty() && ext.empty();
    if (isHostAlone) {
        root = joined(dir, name);
        dir = {};
        name = {};
    } else if (isSlashPair(dir)) {
        auto const hostEnd = 2 + findSlash(dir.substr(2));
        if (hostEnd < dir.size()) {
            root = dir.substr(0, hostEnd);
            dir.remove_prefix(hostEnd);
        }
    }
}

// Writes the normal form: every part closed by the one backslash it needs, empty folders left out.
void PathSplitter::assemble(RawParts const& parts) {
    auto const closingBackslashes = 3;
    auto const capacity = parts.root.size() + parts.drive.size() + parts.dir.size() +
                          parts.name.size() + parts.ext.size() + closingBackslashes;
    if (capacity > inlineCapacity)
        m_longText.resize(capacity);
    auto* const begin = m_longText.empty() ? m_inlineText.data() : m_longText.data();
    auto* end = begin;
    auto const length = [&] { return static_cast<std::size_t>(end - begin); };

    end = copyTo(end, parts.root);
    if (!parts.root.empty())
        *end++ = L'\\';
    m_rootEnd = length();

    end = copyTo(end, parts.drive);
    if (!parts.drive.empty() && end[-1] != L'\\')
        *end++ = L'\\';
    m_driveEnd = length();

    for (auto rest = parts.dir; !rest.empty();) {
        auto const folder = rest.substr(0, findSlash(rest));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (folder.empty())
            continue;
        m_folders.emplace_back(folder);
        end = copyTo(end, folder);
        *end++ = L'\\';
    }
    m_foldersEnd = length();

    end = copyTo(end, parts.name);
    m_nameEnd = length();
    end = copyTo(end, parts.ext);
    m_extensionEnd = length();
}

std::wstring_view PathSplitter::part(std::size_t begin, std::size_t end) const {
    auto const* const text = m_longText.empty() ? m_inlineText.data() : m_longText.data();
    return {text + begin, end - begin};
}

std::wstring PathSplitter::root() const { return std::wstring(part(0, m_rootEnd)); }

std::wstring PathSplitter::drive() const { return std::wstring(part(m_rootEnd, m_driveEnd)); }

std::wstring PathSplitter::rootAndDrive() const { return std::wstring(part(0, m_driveEnd)); }

std::wstring PathSplitter::folderText() const {
    return std::wstring(part(m_driveEnd, m_foldersEnd));
}

std::wstring PathSplitter::folderPath() const { return std::wstring(part(0, m_foldersEnd)); }

std::wstring PathSplitter::pathNoExtension() const { return std::wstring(part(0, m_nameEnd)); }

std::wstring PathSplitter::wholePath() const { return std::wstring(whole()); }

std::wstring PathSplitter::fileName() const { return std::wstring(part(m_foldersEnd, m_nameEnd)); }

std::wstring PathSplitter::extension() const {
    return std::wstring(part(m_nameEnd, m_extensionEnd));
}

std::wstring PathSplitter::fullName() const {
    return std::wstring(part(m_foldersEnd, m_extensionEnd));
}

std::wstring PathSplitter::host() const {
    auto const pieces = hostAndPort(root());
    return pieces.empty() ? root() : L"\\\\" + pieces.front() + L"\\";
}

std::uint32_t PathSplitter::port() const {
    auto const pieces = hostAndPort(root());
    return pieces.size() == 2 ? vrUtils::portNumber(pieces.back(), 0) : 0;
}

std::wstring PathSplitter::firstFolder() const {
    return m_rootEnd == 0 || m_folders.empty() ? std::wstring() : m_folders.front() + L"\\";
}

} // namespace vr
