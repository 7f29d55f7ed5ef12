// Transforms by the platform's own component.

#include "vrUtils/XSLT.h"

#include "foundation/Platform.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScratchFolder.h"

#include <gmock/gmock.h>

#include <objbase.h>

#include <atomic>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

using namespace vrUtils::XSLT;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr std::size_t tenMebibytes = std::size_t{10} << 20;

std::string stylesheet(std::string const& body) {
    return R"(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text"/>)" +
           body + "</xsl:stylesheet>";
}

// Writes out all the text of a document.
std::string const copiesText = stylesheet("<xsl:template match='/'><xsl:value-of select='.'/>"
                                          "</xsl:template>");

// The text so often that it has ten mebibytes: a parser may refuse one piece of that length.
std::string hugeOf(std::string const& text) {
    std::string huge;
    while (huge.size() < tenMebibytes)
        huge += text;
    return huge;
}

class XSLTFiles : public testing::Test {
  protected:
    XSLTFiles() {
        m_folder.write(L"a.xml", "<a>some <b>text</b></a>");
        m_folder.write(L"a.xsl", copiesText);
    }

    std::int32_t transform(std::wstring const& xml = L"a.xml", std::wstring const& xsl = L"a.xsl") {
        return XSLTtoString(m_folder.file(xml), m_folder.file(xsl), &m_result);
    }

    test::ScratchFolder m_folder;
    test::LogRecorder m_log;
    std::string m_result = "before";
};

struct BadFile {
    char const* kind;
    // None for a file that is not there.
    std::optional<std::string> bytes;
};

void PrintTo(BadFile const& file, std::ostream* stream) { *stream << file.kind; }

class XSLTBadFiles : public XSLTFiles, public testing::WithParamInterface<BadFile> {
  protected:
    // What is lacking is logged under its path, for whatever reason the parser gives.
    void expectFailureWith(wchar_t const* name) const {
        EXPECT_EQ("before", m_result);
        ASSERT_EQ(1u, m_log.lines().size());
        auto const line = m_log.lines().front();
        auto const start = L"XSLT transform failed : " + m_folder.file(name) + L"\n";
        EXPECT_THAT(line, test::Logged(7, StartsWith(start)));
        EXPECT_LT(start.size(), line.text().size());
    }

    void write(wchar_t const* name) {
        if (GetParam().bytes)
            m_folder.write(name, *GetParam().bytes);
    }
};

INSTANTIATE_TEST_SUITE_P(
    , XSLTBadFiles,
    testing::Values(
        BadFile{"Missing", std::nullopt}, BadFile{"Empty", ""}, BadFile{"Unclosed", "<a><b></b>"},
        BadFile{"Crossed", "<a><b></a></b>"}, BadFile{"NoMarkup", "just a text"},
        BadFile{"Binary", std::string("\0\1\2\3", 4)}, BadFile{"TwoRoots", "<a/><b/>"},
        BadFile{"CutOff", copiesText.substr(0, copiesText.size() / 2)},
        BadFile{"UnknownEntity", "<a>&unknown;</a>"},
        BadFile{"WrongBytes", "<?xml version='1.0' encoding='UTF-8'?><a>\xff\xfe</a>"},
        BadFile{"HugeAndUnclosed", "<a>" + hugeOf("<b>" + std::string(1000, 'x') + "</b>")}),
    [](auto const& test) { return test.param.kind; });

APTTYPE apartment() {
    auto type = APTTYPE_CURRENT;
    auto qualifier = APTTYPEQUALIFIER_NONE;
    auto const code = CoGetApartmentType(&type, &qualifier);
    return code == CO_E_NOTINITIALIZED ? APTTYPE_CURRENT : type;
}

// What a host's thread may be in: none, or one of the two kinds.
struct Apartment {
    char const* name;
    std::optional<DWORD> kind;
};

void PrintTo(Apartment const& apartment, std::ostream* stream) { *stream << apartment.name; }

class XSLTApartments : public XSLTFiles, public testing::WithParamInterface<Apartment> {
  protected:
    void enter() const {
        if (GetParam().kind) {
            ASSERT_GE(CoInitializeEx(nullptr, *GetParam().kind), 0);
        }
    }

    void leave() const {
        if (GetParam().kind)
            CoUninitialize();
    }
};

INSTANTIATE_TEST_SUITE_P(
    , XSLTApartments,
    testing::Values(
        Apartment{"None", std::nullopt}, Apartment{"SingleThreaded", COINIT_APARTMENTTHREADED},
        Apartment{"MultiThreaded", COINIT_MULTITHREADED}),
    [](auto const& test) { return test.param.name; });

} // namespace

TEST_F(XSLTFiles, AreMadeIntoText) {
    EXPECT_EQ(0, transform());

    EXPECT_EQ("some text", m_result);
    EXPECT_THAT(m_log.lines(), testing::IsEmpty());
}

TEST_F(XSLTFiles, MayHaveNamesOfAnyCharacters) {
    m_folder.write(L"Tag 1\\\u00dcbung \u65e5 & 100%.xml", "<a>day</a>");
    m_folder.write(L"Tag 1\\\u00dcbung #1.xsl", copiesText);

    EXPECT_EQ(0, transform(L"Tag 1\\\u00dcbung \u65e5 & 100%.xml", L"Tag 1\\\u00dcbung #1.xsl"));

    EXPECT_EQ("day", m_result);
}

TEST_F(XSLTFiles, AreReadAnewByEachCall) {
    transform();
    m_folder.write(L"a.xml", "<a>other text</a>");

    EXPECT_EQ(0, transform());

    EXPECT_EQ("other text", m_result);
}

TEST_F(XSLTFiles, ThatGiveNothingGiveAnEmptyText) {
    m_folder.write(L"a.xsl", stylesheet("<xsl:template match='/'/>"));

    EXPECT_EQ(0, transform());

    EXPECT_EQ("", m_result);
}

TEST_F(XSLTFiles, MayBeMadeIntoMarkup) {
    auto text = stylesheet("<xsl:template match='/'><p class='x'><xsl:value-of select='a/b'/></p>"
                           "</xsl:template>");
    text.replace(text.find("method=\"text\""), 13, "method='xml' omit-xml-declaration='yes'");
    m_folder.write(L"a.xsl", text);

    EXPECT_EQ(0, transform());

    EXPECT_THAT(m_result, StartsWith("<p class=\"x\">text</p>"));
}

TEST_F(XSLTFiles, GiveTheCodePagesOwnBytes) {
    m_folder.write(L"a.xml", "<a>&#xDC;bung &#x20AC;</a>");

    transform();

    EXPECT_EQ(
        "\xdc"
        "bung \x80",
        m_result);
}

TEST_F(XSLTFiles, GiveAQuestionMarkForWhatTheCodePageLacks) {
    m_folder.write(L"a.xml", "<a>a &#x65E5;&#x1F3AC; b</a>");

    EXPECT_EQ(0, transform());

    // A character beyond the first plane is two units.
    EXPECT_EQ("a ??? b", m_result);
}

TEST_F(XSLTFiles, AreNotValidated) {
    m_folder.write(L"a.xml", "<!DOCTYPE a [<!ELEMENT a (b)>]><a>not <c>b</c></a>");

    EXPECT_EQ(0, transform());

    EXPECT_EQ("not b", m_result);
}

TEST_F(XSLTFiles, BringNoOtherFilesIn) {
    m_folder.write(L"secret.txt", "secret");
    m_folder.write(L"a.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'secret.txt'>]><a>open &e;</a>");

    transform();

    EXPECT_THAT(m_result, Not(HasSubstr("secret")));
}

TEST_F(XSLTFiles, MayBeHuge) {
    std::string const line(1023, 'x');
    m_folder.write(L"a.xml", "<a>" + hugeOf("<b>" + line + "\n</b>") + "</a>");

    EXPECT_EQ(0, transform());

    EXPECT_EQ(0u, m_result.size() % 1024);
    EXPECT_EQ(hugeOf("<b>" + line + "\n</b>").size() / 1031 * 1024, m_result.size());
    EXPECT_EQ(line + '\n', m_result.substr(m_result.size() - 1024));
}

TEST_F(XSLTFiles, MayHaveAHugeStylesheet) {
    auto const remark = "<!--" + std::string(1000, 'x') + "-->";
    m_folder.write(
        L"a.xsl", stylesheet("<xsl:template match='/'>made</xsl:template>" + hugeOf(remark)));

    EXPECT_EQ(0, transform());

    EXPECT_EQ("made", m_result);
}

TEST_P(XSLTBadFiles, FailAsXml) {
    write(L"bad");

    EXPECT_EQ(TransformFailed, transform(L"bad"));

    expectFailureWith(L"bad");
}

TEST_P(XSLTBadFiles, FailAsAStylesheet) {
    write(L"bad");

    EXPECT_EQ(TransformFailed, transform(L"a.xml", L"bad"));

    expectFailureWith(L"bad");
}

TEST_F(XSLTFiles, ThatAreFoldersFail) {
    m_folder.makeFolder(L"folder");

    EXPECT_EQ(TransformFailed, transform(L"folder"));
    EXPECT_EQ(TransformFailed, transform(L"a.xml", L"folder"));

    EXPECT_EQ("before", m_result);
}

TEST_F(XSLTFiles, WithoutNamesFail) {
    EXPECT_EQ(TransformFailed, XSLTtoString(L"", m_folder.file(L"a.xsl"), &m_result));
    EXPECT_EQ(TransformFailed, XSLTtoString(m_folder.file(L"a.xml"), L"", &m_result));

    EXPECT_EQ("before", m_result);
}

TEST_F(XSLTFiles, ThatFailLeaveNothingInTheWayOfTheNext) {
    transform(L"missing.xml");

    EXPECT_EQ(0, transform());

    EXPECT_EQ("some text", m_result);
}

TEST_P(XSLTApartments, ServeAndStayAsTheyWere) {
    std::thread([this] {
        enter();
        auto const before = apartment();

        EXPECT_EQ(0, transform());

        EXPECT_EQ("some text", m_result);
        EXPECT_EQ(before, apartment());
        leave();
        EXPECT_EQ(APTTYPE_CURRENT, apartment());
    }).join();
}

TEST_P(XSLTApartments, StayAsTheyWereWhenATransformFails) {
    std::thread([this] {
        enter();
        auto const before = apartment();

        EXPECT_EQ(TransformFailed, transform(L"missing.xml"));

        EXPECT_EQ(before, apartment());
        leave();
        EXPECT_EQ(APTTYPE_CURRENT, apartment());
    }).join();
}

// Each time COM is left for good before the documents go.
TEST_F(XSLTFiles, OutliveThousandDeparturesFromCom) {
    transform();
    test::HandleLeakCheck const check;

    for (int round = 0; round < 1000; ++round) {
        m_result.clear();
        ASSERT_EQ(0, transform()) << round;
        ASSERT_EQ("some text", m_result) << round;
    }
}

TEST_F(XSLTFiles, MayBeTransformedByManyThreadsAtOnce) {
    std::atomic<int> made{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round) {
                std::string result;
                auto const code =
                    XSLTtoString(m_folder.file(L"a.xml"), m_folder.file(L"a.xsl"), &result);
                made += code == 0 && result == "some text";
            }
        });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(8 * 25, made);
}
