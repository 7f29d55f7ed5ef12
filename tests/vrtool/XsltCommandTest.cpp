// `vrtool xslt` as its users run it.

#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"
#include "tests/vrtool/ToolRun.h"
#include "tests/vrtool/WorkingFolder.h"

#include <gtest/gtest.h>

namespace {

constexpr char copiesText[] =
    R"(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text"/></xsl:stylesheet>)";

class VrtoolXslt : public testing::Test {
  protected:
    VrtoolXslt() {
        m_folder.write(L"a.xml", "<a>&#xDC;bung <b>1&#10;2 </b>\xE2\x82\xAC &#x65E5;</a>");
        m_folder.write(L"a.xsl", copiesText);
    }

    test::ToolRun run(wchar_t const* xml, wchar_t const* xsl) const {
        return test::runTool({L"xslt", m_folder.file(xml), m_folder.file(xsl)});
    }

    std::string nameOf(wchar_t const* file) const {
        return '"' + test::utf8(m_folder.file(file)) + '"';
    }

    test::ScratchFolder m_folder;
};

} // namespace

TEST_F(VrtoolXslt, PrintsTheTextAlone) {
    auto const result = run(L"a.xml", L"a.xsl");

    EXPECT_EQ(
        "\xC3\x9C"
        "bung 1\n2 \xE2\x82\xAC ?",
        result.out);
    EXPECT_EQ("", result.error);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolXslt, PrintsAnEmptyText) {
    m_folder.write(L"a.xml", "<a/>");

    auto const result = run(L"a.xml", L"a.xsl");

    EXPECT_EQ("", result.out);
    EXPECT_EQ("", result.error);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolXslt, LooksForFilesInTheCurrentFolder) {
    test::WorkingFolder const here(m_folder.path());
    m_folder.write(L"b.xml", "<a>here</a>");

    auto const result = test::runTool({L"xslt", L"b.xml", L"a.xsl"});

    EXPECT_EQ("here", result.out);
    EXPECT_EQ(0u, result.exitCode);
}

TEST_F(VrtoolXslt, NamesAnXmlFileThatIsMissing) {
    auto const result = run(L"b.xml", L"b.xsl");

    EXPECT_EQ("", result.out);
    EXPECT_EQ("vrtool: no such file: " + nameOf(L"b.xml") + '\n', result.error);
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolXslt, NamesAStylesheetThatIsMissing) {
    auto const result = run(L"a.xml", L"b.xsl");

    EXPECT_EQ("vrtool: no such file: " + nameOf(L"b.xsl") + '\n', result.error);
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolXslt, PointsToTheLogForAFileThatIsNotWellFormed) {
    m_folder.write(L"a.xml", "<a>");

    auto const result = run(L"a.xml", L"a.xsl");

    EXPECT_EQ("", result.out);
    EXPECT_EQ(
        "vrtool: cannot apply " + nameOf(L"a.xsl") + " to " + nameOf(L"a.xml") +
            "; if one of them is not well formed, the log says so\n",
        result.error);
    EXPECT_EQ(1u, result.exitCode);
}

TEST_F(VrtoolXslt, WantsBothFiles) {
    auto const result = test::runTool({L"xslt", m_folder.file(L"a.xml")});

    EXPECT_EQ("", result.out);
    EXPECT_EQ(2u, result.exitCode);
}
