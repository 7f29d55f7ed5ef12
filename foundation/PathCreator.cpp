#include "foundation/Text.h"
#include "vrUtils/Path.h"

#include <algorithm>
#include <utility>

namespace vr {

using namespace vrUtils::Strings;

PathCreator::PathCreator() = default;

PathCreator::PathCreator(std::wstring const& text) { append(text); }

PathCreator::PathCreator(wchar_t const* text) { append(text); }

PathCreator::PathCreator(
    std::wstring const& host, wchar_t const* folder, wchar_t const* name,
    wchar_t const* extension) {
    // Slashes first: those that stand inside white space are part of the name.
    auto const hostName = trim(trimSlashes(host));
    if (!hostName.empty())
        append(L"\\\\").append(hostName);
    append(folder);
    if (name)
        append(name);
    if (extension)
        appendRaw(extension);
}

PathCreator::PathCreator(PathCreator const&) = default;
PathCreator::PathCreator(PathCreator&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}
PathCreator& PathCreator::operator=(PathCreator const&) = default;
PathCreator& PathCreator::operator=(PathCreator&& other) noexcept {
    m_path = std::exchange(other.m_path, {});
    return *this;
}
PathCreator::~PathCreator() = default;

PathCreator& PathCreator::operator=(std::wstring const& text) { return *this = text.c_str(); }

PathCreator& PathCreator::operator=(wchar_t const* text) {
    // The text may be this builder's own, so it is read before anything is given up.
    PathCreator creator(text);
    m_path.swap(creator.m_path);
    return *this;
}

PathCreator& PathCreator::append(std::wstring const& piece) { return append(piece.c_str()); }

PathCreator& PathCreator::append(wchar_t const* piece) {
    std::wstring_view added(piece);
    if (added.empty())
        return *this;
    bool const pathCloses = !m_path.empty() && m_path.back() == L'\\';
    bool const pieceOpens = isSlash(added.front());
    if (pathCloses && pieceOpens)
        added.remove_prefix(1);

    // The piece may be this builder's own text: it goes in whole before anything else moves.
    auto const joint = m_path.size();
    m_path.append(added);
    std::replace(m_path.begin() + static_cast<std::ptrdiff_t>(joint), m_path.end(), L'/', L'\\');
    if (joint > 0 && !pathCloses && !pieceOpens)
        m_path.insert(joint, 1, L'\\');
    return *this;
}

PathCreator& PathCreator::appendRaw(std::wstring const& text) { return appendRaw(text.c_str()); }

PathCreator& PathCreator::appendRaw(wchar_t const* text) {
    m_path.append(text);
    return *this;
}

void PathCreator::clear() { m_path.clear(); }

bool PathCreator::empty() const { return m_path.empty(); }

wchar_t const* PathCreator::c_str() const { return m_path.c_str(); }

std::wstring PathCreator::get() const { return m_path; }

void PathCreator::convertToForwardSlash() {
    std::replace(m_path.begin(), m_path.end(), L'\\', L'/');
}

} // namespace vr
