#include "vrUtils/Path.h"

#include "foundation/Text.h"

#include <ostream>
#include <utility>

namespace vr {

using namespace vrUtils::Strings;

Path::Path() = default;

Path::Path(Path const& other) : PathCreator(other), m_type(other.m_type) {}

Path::Path(Path&& other) noexcept
    : PathCreator(std::move(other)),
      m_splitter(std::move(other.m_splitter)),
      m_type(other.m_type) {}

Path::Path(std::wstring const& text, eType type) : PathCreator(text) { settleType(type); }

Path::Path(wchar_t const* text, eType type) : PathCreator(text) { settleType(type); }

Path::Path(
    std::wstring const& host, std::wstring const& folder, std::wstring const& name,
    std::wstring const& extension, eType type)
    : PathCreator(host, folder.c_str(), name.c_str(), extension.c_str()) {
    settleType(type);
}

Path::~Path() = default;

Path Path::folder(std::wstring const& text) { return Path(text, eFolder); }

Path Path::folder(std::wstring const& host, std::wstring const& folder) {
    return Path(host, folder, L"", L"", eFolder);
}

Path Path::file(std::wstring const& text) { return Path(text, eFile); }

Path Path::file(std::wstring const& host, std::wstring const& folder, std::wstring const& name) {
    return Path(host, folder, name, L"", eFile);
}

Path Path::file(
    std::wstring const& host, std::wstring const& folder, std::wstring const& name,
    std::wstring const& extension) {
    return Path(host, folder, name, extension, eFile);
}

Path& Path::operator=(Path const& other) {
    auto const text = other.components().wholePath();
    auto& creator = modify(other.m_type);
    creator.clear();
    creator.append(text);
    return *this;
}

Path& Path::operator+=(Path const& other) {
    auto const text = other.components().wholePath();
    modify(other.m_type).append(text);
    return *this;
}

std::wstring Path::str() { return components().wholePath(); }

bool Path::empty() const { return PathCreator::empty(); }

std::uint64_t Path::size() const { return normalForm().size(); }

bool Path::isRelative() const { return components().m_driveEnd == 0; }

bool Path::isAbsolute() const { return !isRelative(); }

bool Path::hasCommonRoot(Path const& other) const {
    auto const otherForm = other.normalForm();
    return equalLowered(normalForm().substr(0, otherForm.size()), otherForm);
}

Path Path::removeCommonRoot(Path const& other) const {
    if (other.empty() || !hasCommonRoot(other))
        return *this;
    return Path(std::wstring(normalForm().substr(other.size())), m_type);
}

PathSplitter const& Path::components() const {
    if (!m_splitter)
        m_splitter = std::make_unique<PathSplitter>(m_path, m_type != eFolder);
    return *m_splitter;
}

PathCreator& Path::modify(eType type) {
    m_splitter.reset();
    m_type = type;
    return *this;
}

bool Path::AppendFolderIfNotPresent(std::wstring const& folder) {
    auto const& parts = components();
    if (parts.hasFullName())
        return false;
    if (!parts.folders().empty() && parts.folders().back() == trimSlashes(folder))
        return false;
    // The folder may stand in the parse, so it is appended before the parse goes.
    append(folder);
    modify(eDetect);
    return true;
}

// A text that ends in a separator is a folder's, and so is a host or a drive alone; any other is a
// file's.
void Path::settleType(eType type) {
    m_type = type;
    if (type == eDetect)
        m_type = components().hasFullName() ? eFile : eFolder;
}

std::wstring_view Path::normalForm() const { return components().whole(); }

bool operator==(Path const& left, Path const& right) {
    return equalLowered(left.normalForm(), right.normalForm());
}

Path operator+(Path const& left, Path const& right) {
    Path sum(left);
    sum += right;
    return sum;
}

std::wostream& operator<<(std::wostream& stream, Path const& path) {
    return stream << path.components().wholePath();
}

} // namespace vr
