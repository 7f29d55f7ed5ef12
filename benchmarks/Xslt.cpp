// Text made of an XML file by a stylesheet, ours beside the component's own calls.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/XSLT.h"

#include <objbase.h>

#include <msxml2.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr CLSID domDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};

// A line for each check, with its name, its finding and its result.
constexpr char stylesheet[] =
    R"(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text"/>
<xsl:template match="/preflight"><xsl:for-each select="check">
<xsl:value-of select="@name"/>: <xsl:value-of select="."/> (<xsl:value-of select="@result"/>)
</xsl:for-each></xsl:template>
</xsl:stylesheet>)";

// A report of about this many bytes.
std::string reportOf(std::size_t bytes) {
    std::string report = "<preflight>";
    for (unsigned number = 0; report.size() < bytes; ++number)
        report += "<check name=\"Loudness of track " + std::to_string(number) +
                  "\" result=\"passed\">-23 LUFS</check>\n";
    return report + "</preflight>";
}

std::wstring written(std::wstring const& name, std::string const& bytes) {
    auto const file = benchmarks::fileNamed(name.c_str());
    std::ofstream(std::filesystem::path(file), std::ios::binary) << bytes;
    return file;
}

std::string transform(std::wstring const& xml, std::wstring const& xsl) {
    std::string text;
    vrUtils::XSLT::XSLTtoString(xml, xsl, &text);
    return text;
}

IXMLDOMDocument* loaded(std::wstring const& path) {
    void* created = nullptr;
    if (FAILED(CoCreateInstance(
            domDocument60, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument, &created)))
        return nullptr;
    auto* const document = static_cast<IXMLDOMDocument*>(created);
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);

    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_BSTR;
    argument.bstrVal = SysAllocString(path.c_str());
    VARIANT_BOOL accepted = VARIANT_FALSE;
    document->load(argument, &accepted);
    VariantClear(&argument);
    return document;
}

// The same steps, for one program.
std::string transformByHand(std::wstring const& xml, std::wstring const& xsl) {
    CoInitialize(nullptr);
    auto* const document = loaded(xml);
    auto* const sheet = loaded(xsl);
    BSTR text = nullptr;
    document->transformNode(sheet, &text);

    auto const units = static_cast<int>(SysStringLen(text));
    auto const length = WideCharToMultiByte(CP_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, units, bytes.data(), length, nullptr, nullptr);
    SysFreeString(text);
    sheet->Release();
    document->Release();
    CoUninitialize();
    return bytes;
}

void row(std::string const& size, std::size_t bytes, std::wstring const& xsl) {
    using benchmarks::candidate;
    auto const name = "xslt-" + size;
    auto const xml = written(std::wstring(name.begin(), name.end()) + L".xml", reportOf(bytes));
    candidate(name.c_str(), "ours", [=] { return transform(xml, xsl); });
    candidate(name.c_str(), "limit", [=] { return transformByHand(xml, xsl); });
}

} // namespace

void benchmarks::registerCandidates() {
    auto const xsl = written(L"report.xsl", stylesheet);
    row("1KiB", std::size_t{1} << 10, xsl);
    row("100KiB", std::size_t{100} << 10, xsl);
    row("10MiB", std::size_t{10} << 20, xsl);
}
