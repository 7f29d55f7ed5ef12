#include "PathSplitterModel.h"

#include <sstream>

namespace {

bool isSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

std::wstring withoutSlashesAtTheEnds(std::wstring text) {
    while (!text.empty() && isSeparator(text.front()))
        text.erase(0, 1);
    while (!text.empty() && isSeparator(text.back()))
        text.pop_back();
    return text;
}

std::list<std::wstring> pieces(std::wstring const& text, wchar_t separator) {
    std::list<std::wstring> result;
    std::wstring piece;
    for (auto const character : text + separator) {
        if (character != separator) {
            piece += character;
        } else if (!piece.empty()) {
            result.push_back(piece);
            piece.clear();
        }
    }
    return result;
}

} // namespace

PathSplitterModel::PathSplitterModel(std::wstring const& text, bool isFile) {
    // Separators are backslashes from here on.
    auto converted = text;
    for (auto& character : converted)
        if (character == L'/')
            character = L'\\';
    splitPath(converted);

    // The extension begins at its last dot.
    if (isFile && !ext.empty()) {
        auto const lastDot = ext.rfind(L'.');
        if (lastDot != 0) {
            name += ext.substr(0, lastDot);
            ext = ext.substr(lastDot);
        }
    }
    // Relative to the drive's current folder.
    if (!drive.empty()) {
        auto const colon = converted.find(L':');
        if (colon + 1 < converted.size() && converted[colon + 1] != L'\\') {
            dir = drive + dir;
            drive.clear();
        }
    }
    // A folder has no extension.
    if (!isFile) {
        name += withoutSlashesAtTheEnds(ext);
        ext.clear();
    }
    // A dot alone is none either.
    if (ext == L".") {
        name += ext;
        ext.clear();
    }
    // A drive ends in a backslash.
    if (!drive.empty() && drive.back() != L'\\')
        drive += L'\\';
    // A host alone, or a root in front of the folders.
    if (drive.empty() && dir == L"\\\\" && !name.empty() && ext.empty()) {
        root = dir + name + L"\\";
        dir.clear();
        name.clear();
    } else if (dir.substr(0, 2) == L"\\\\" || dir.substr(0, 2) == L"//") {
        auto end = dir.find(L'\\', 2);
        if (end == std::wstring::npos)
            end = dir.find(L'/', 2);
        if (end != std::wstring::npos) {
            root = dir.substr(0, end) + L"\\";
            dir = dir.substr(end);
        }
    }
    // Folders without empty ones, each closed by a backslash.
    folders = pieces(dir, L'\\');
    dir.clear();
    for (auto const& folder : folders)
        dir += folder + L"\\";
}

void PathSplitterModel::splitPath(std::wstring const& text) {
    // The drive, with its separator.
    std::size_t scanStart = 0;
    if (text.size() >= 2 && text[1] == L':') {
        drive = text.substr(0, 2);
        if (text.size() >= 3 && isSeparator(text[2]))
            drive += text[2];
        scanStart = drive.size();
    }
    // The last part's last colon ends it.
    auto end = text.size();
    for (auto scan = end; scan > scanStart; --scan) {
        if (isSeparator(text[scan - 1]))
            break;
        if (text[scan - 1] == L':') {
            end = scan - 1;
            break;
        }
    }
    // Its last dot before that ends the name.
    for (auto scan = end; scan > scanStart; --scan) {
        if (isSeparator(text[scan - 1]))
            break;
        if (text[scan - 1] == L'.') {
            end = scan - 1;
            break;
        }
    }
    // The extension reaches to the end of the text, a stream included.
    if (end < text.size() && text[end] == L'.')
        ext = text.substr(end);
    // Name and folders.
    auto nameBegin = end;
    while (nameBegin > scanStart && !isSeparator(text[nameBegin - 1]))
        --nameBegin;
    name = text.substr(nameBegin, end - nameBegin);
    dir = text.substr(scanStart, nameBegin - scanStart);
}

std::list<std::wstring> PathSplitterModel::hostAndPort() const {
    return pieces(withoutSlashesAtTheEnds(root), L':');
}

std::wstring PathSplitterModel::host() const {
    if (root.empty() || hostAndPort().empty())
        return root;
    return L"\\\\" + hostAndPort().front() + L"\\";
}

std::uint32_t PathSplitterModel::port() const {
    if (root.empty() || hostAndPort().size() != 2)
        return 0;
    std::wistringstream stream(hostAndPort().back());
    std::uint32_t number = 0;
    stream >> number;
    return number;
}

std::wstring PathSplitterModel::firstFolder() const {
    if (root.empty() || dir.empty())
        return L"";
    return folders.front() + L"\\";
}
