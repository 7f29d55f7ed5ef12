// What the library lets out of its text functions.

#include "foundation/Platform.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> exportedNames(wchar_t const* library) {
    auto* const base = reinterpret_cast<char const*>(GetModuleHandleW(library));
    auto const& dosHeader = *reinterpret_cast<IMAGE_DOS_HEADER const*>(base);
    auto const& headers = *reinterpret_cast<IMAGE_NT_HEADERS const*>(base + dosHeader.e_lfanew);
    auto const place = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    auto const& exports =
        *reinterpret_cast<IMAGE_EXPORT_DIRECTORY const*>(base + place.VirtualAddress);
    auto const* const names = reinterpret_cast<DWORD const*>(base + exports.AddressOfNames);

    std::vector<std::string> result;
    for (DWORD index = 0; index < exports.NumberOfNames; ++index)
        result.emplace_back(base + names[index]);
    return result;
}

} // namespace

TEST(StringsExport, HelpersStayInside) {
    std::vector<std::string> texts;
    for (auto const& name : exportedNames(L"vrUtils.dll"))
        if (name.find("7vrUtils7Strings") != std::string::npos)
            texts.push_back(name);

    EXPECT_THAT(
        texts, testing::UnorderedElementsAre(
                   testing::HasSubstr("20BreakMultiLineString"), testing::HasSubstr("9DecodeURL"),
                   testing::HasSubstr("14FourCCToString")));
}
