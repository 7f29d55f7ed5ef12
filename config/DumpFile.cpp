#include "config/DumpFile.h"

#include <algorithm>
#include <iterator>

#include <share.h>

namespace vrUtils::Registry {

namespace {

bool hasNoByte(wchar_t character) { return character > 0xFF; }

} // namespace

DumpFile::DumpFile(std::wstring const& path) : m_file(_wfsopen(path.c_str(), L"wt", _SH_DENYNO)) {}

void DumpFile::write(std::wstring_view text) {
    if (!m_file)
        return;

    auto const end = std::find_if(text.begin(), text.end(), hasNoByte);
    m_bytes.clear();
    std::transform(text.begin(), end, std::back_inserter(m_bytes), [](wchar_t character) {
        return static_cast<char>(character);
    });
    auto const written = std::fwrite(m_bytes.data(), 1, m_bytes.size(), m_file.get());
    if (written < m_bytes.size() || end != text.end())
        close();
}

void DumpFile::close() noexcept { m_file.reset(); }

} // namespace vrUtils::Registry
