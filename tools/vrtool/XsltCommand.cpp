#include "tools/vrtool/XsltCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Files.h"
#include "vrUtils/XSLT.h"

namespace {

constexpr char xsltExplanation[] =
    R"(Prints nothing but the text, in UTF-8 whatever the stylesheet says. What the
code page of this system lacks has become "?" by then, as every program gets it
that asks the library. Nothing is validated, and no other file is read.

A file that is not well formed is in the log, with the parser's reason.

Ends with 0, with 1 if there is no text, 2 if the arguments are wrong.

Example:
  vrtool xslt D:\Media\pfc\clip.xml preflight.xsl > clip.html)";

std::wstring quotedName(std::wstring const& file) { return L'"' + file + L'"'; }

// The library has one code for every cause.
// @return why there is no text; empty if there is one
std::wstring makeText(std::wstring const& xml, std::wstring const& stylesheet, std::string& text) {
    for (auto const& file : {xml, stylesheet})
        if (!vrUtils::Files::FileExists(vr::Path::file(file)))
            return L"no such file: " + quotedName(file);
    if (vrUtils::XSLT::XSLTtoString(xml, stylesheet, &text) < 0)
        return L"cannot apply " + quotedName(stylesheet) + L" to " + quotedName(xml) +
               L"; if one of them is not well formed, the log says so";
    return {};
}

} // namespace

XsltCommand::XsltCommand()
    : Command("xslt", "Make text of an XML file with a stylesheet", xsltExplanation) {}

void XsltCommand::declare(CLI::App& arguments) {
    m_xml = arguments.add_option("XML")->required()->description("The XML file");
    m_stylesheet = arguments.add_option("XSL")->required()->description("The stylesheet");
}

int XsltCommand::run(Console& console) const {
    auto const xml = fullPath(CommandLine::textOf(*m_xml));
    auto const stylesheet = fullPath(CommandLine::textOf(*m_stylesheet));
    std::string text;
    auto const failure = makeText(xml, stylesheet, text);
    if (!failure.empty()) {
        console.error("vrtool: " + toUtf8(failure) + '\n');
        return ExitCode::failure;
    }
    console.out(toUtf8(fromAnsi(text)));
    return ExitCode::success;
}
