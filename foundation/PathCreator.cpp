#include "vrUtils/Path.h"

#include "foundation/Text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace vr {

using namespace vrUtils::Strings;

namespace {

// Room that is made for the first piece, so that those joined to it seldom move the text.
constexpr std::size_t usualLength = 100;

// A terminated text. Pieces are short, and the runtime's own search costs a call.
std::wstring_view terminated(wchar_t const* text) {
    auto const* end = text;
    while (*end != L'\0')
        ++end;
    return {text, static_cast<std::size_t>(end - text)};
}

// Whether the piece stands in the text.
bool isPartOf(std::wstring const& text, std::wstring_view piece) {
    std::less_equal<> const notBehind;
    return notBehind(text.data(), piece.data()) &&
           notBehind(piece.data(), text.data() + text.size());
}

// Makes room for the piece and a separator; a piece of the text itself moves along with it.
void makeRoom(std::wstring& text, std::wstring_view& piece) {
    auto const length = text.size() + 1 + piece.size();
    if (length <= text.capacity())
        return;
    bool const isPart = isPartOf(text, piece);
    auto const offset = isPart ? piece.data() - text.data() : 0;
    text.reserve(std::max(length, usualLength));
    if (isPart)
        piece = {text.data() + offset, piece.size()};
}

void join(std::wstring& path, std::wstring_view piece) {
    if (piece.empty())
        return;
    bool const pathCloses = !path.empty() && path.back() == L'\\';
    bool const pieceOpens = isSlash(piece.front());
    if (pathCloses && pieceOpens)
        piece.remove_prefix(1);
    makeRoom(path, piece);
    if (!path.empty() && !pathCloses && !pieceOpens)
        path.push_back(L'\\');

    auto const length = static_cast<std::ptrdiff_t>(path.size());
    path.append(piece);
    auto const joint = path.begin() + length;
    std::transform(joint, path.end(), joint, [](wchar_t c) { return c == L'/' ? L'\\' : c; });
}

} // namespace

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

PathCreator& PathCreator::append(std::wstring const& piece) {
    join(m_path, upToZero(piece));
    return *this;
}

PathCreator& PathCreator::append(wchar_t const* piece) {
    join(m_path, terminated(piece));
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
