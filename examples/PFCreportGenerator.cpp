// The program that makes a movie's HTML report of its XML one, as createPFCHTMLReport calls it:
//
//     PFCreportGenerator.exe XML HTML [MOVIE] [SIGNATURE]
//
// The page is laid out by preflight.xsl, which lies beside the program. An argument that is empty
// does not arrive, so a movie without a name shows its signature instead; better than no report.

#include <vrUtils/vrUtils.h>

#include <string>
#include <vector>

#include <windows.h>

namespace {

// A character beyond ASCII goes by its number, which every page can show, whatever its code page.
std::string forPage(std::wstring const& text) {
    std::string page;
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::uint32_t character = text[at];
        auto const isPair = (character & 0xFC00) == 0xD800 && at + 1 < text.size() &&
                            (text[at + 1] & 0xFC00) == 0xDC00;
        if (isPair)
            character = 0x10000 + ((character & 0x3FF) << 10) + (text[++at] & 0x3FF);
        if (character >= 128 || character == '&' || character == '<')
            page += "&#" + std::to_string(character) + ';';
        else
            page += static_cast<char>(character);
    }
    return page;
}

void fill(std::string& page, std::string const& mark, std::string const& text) {
    for (auto at = page.find(mark); at != std::string::npos; at = page.find(mark, at + text.size()))
        page.replace(at, mark.size(), text);
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 3)
        return 2;
    std::wstring const movie = count > 3 ? arguments[3] : L"";
    std::wstring const signature = count > 4 ? arguments[4] : L"";

    std::string page;
    auto const stylesheet = vrUtils::Process::GetOstrelBinaryPath() + L"preflight.xsl";
    if (vrUtils::XSLT::XSLTtoString(arguments[1], stylesheet, &page) < 0)
        return 1;
    fill(page, "@MOVIE@", forPage(movie));
    fill(page, "@SIGNATURE@", forPage(signature));
    fill(page, "@CHARSET@", "windows-" + std::to_string(GetACP()));
    try {
        page.insert(0, "<!DOCTYPE html>\n");
        std::vector<char> const bytes(page.begin(), page.end());
        vrUtils::Files::SaveSmallFile(bytes, vr::Path::file(arguments[2]));
    } catch (vrException const&) {
        return 1;
    }
    return 0;
}
