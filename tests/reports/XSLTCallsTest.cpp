// What a transform asks of COM and of the XML component, in which order, and what becomes of each
// failure on the way.

#include "vrUtils/XSLT.h"

#include "tests/reports/FakeComponent.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <initializer_list>
#include <new>
#include <ostream>
#include <string>
#include <vector>

using namespace vrUtils::XSLT;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::string>;

constexpr unsigned short textVariant = 8;

class XSLTCalls : public testing::Test {
  protected:
    std::int32_t transform() { return XSLTtoString(L"C:\\a.xml", L"C:\\b.xsl", &m_result); }

    // Beyond what a string holds without an allocation.
    void makeLongOutput() { m_component.output = std::wstring(100, L'x'); }

    bool called(std::string const& call) const {
        auto const& calls = m_component.calls();
        return std::find(calls.begin(), calls.end(), call) != calls.end();
    }

    void expectNothingLeaked() const {
        EXPECT_EQ(0u, m_component.unreleased());
        EXPECT_EQ(0u, m_component.releasedTwice());
    }

    test::LogRecorder m_log;
    test::FakeComponent m_component;
    std::string m_result = "before";
};

Calls settingUp(std::string const& document) {
    return {
        document + ".create", document + ".put_async(0)", document + ".put_validateOnParse(0)",
        document + ".put_resolveExternals(0)", document + ".load"};
}

Calls joined(std::initializer_list<Calls> parts) {
    Calls all;
    for (auto const& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// Told by what each document's file is like.
struct Step {
    char const* call;
    // Whether the call is made only of a file that the parser rejects.
    bool rejected;
    // The calls between the failing one and the end.
    std::vector<char const*> behind;
};

void PrintTo(Step const& step, std::ostream* stream) { *stream << step.call; }

class XSLTStep : public XSLTCalls, public testing::WithParamInterface<Step> {
  protected:
    XSLTStep() {
        if (GetParam().rejected)
            m_component
                .flags[std::string(GetParam().call).substr(0, 3) == "xml" ? "xml" : "stylesheet"] =
                0;
    }
};

INSTANTIATE_TEST_SUITE_P(
    , XSLTStep,
    testing::Values(
        Step{"xml.create", false, {}}, Step{"xml.load", false, {"xml.Release"}},
        Step{"xml.get_parseError", true, {"xml.Release"}},
        Step{"xml.error.get_reason", true, {"xml.Release"}},
        Step{"stylesheet.create", false, {"xml.Release"}},
        Step{"stylesheet.load", false, {"stylesheet.Release", "xml.Release"}},
        Step{"stylesheet.get_parseError", true, {"stylesheet.Release", "xml.Release"}},
        Step{"stylesheet.error.get_reason", true, {"stylesheet.Release", "xml.Release"}},
        Step{"xml.transformNode(stylesheet)", false, {"stylesheet.Release", "xml.Release"}}));

class XSLTOption : public XSLTCalls, public testing::WithParamInterface<char const*> {};

INSTANTIATE_TEST_SUITE_P(
    , XSLTOption,
    testing::Values(
        "xml.put_async(0)", "xml.put_validateOnParse(0)", "xml.put_resolveExternals(0)",
        "stylesheet.put_async(0)", "stylesheet.put_validateOnParse(0)",
        "stylesheet.put_resolveExternals(0)"));

class XSLTDocument : public XSLTCalls, public testing::WithParamInterface<char const*> {};

INSTANTIATE_TEST_SUITE_P(, XSLTDocument, testing::Values("xml", "stylesheet"));

// Fails one call of the conversion and keeps what it was called with.
class Conversion {
  public:
    explicit Conversion(unsigned failing) : m_failing(failing) {}

    unsigned calls() const { return m_hook.calls(); }

    std::vector<std::string> const& unusual() const { return m_unusual; }

  private:
    unsigned m_failing;
    std::vector<std::string> m_unusual;
    test::ImportHook<decltype(WideCharToMultiByte)> m_hook{
        "WideCharToMultiByte", [this](
                                   UINT page, DWORD flags, LPCWCH text, int units, LPSTR bytes,
                                   int room, LPCCH standard, LPBOOL used) {
            if (page != CP_ACP || flags != 0 || standard || used)
                m_unusual.push_back("call " + std::to_string(m_hook.calls()));
            if (m_hook.calls() == m_failing)
                return 0;
            return m_hook.original()(page, flags, text, units, bytes, room, standard, used);
        }};
};

} // namespace

TEST_F(XSLTCalls, ComeInTheirOrder) {
    transform();

    EXPECT_THAT(
        m_component.calls(), ElementsAreArray(joined(
                                 {{"CoInitialize"},
                                  settingUp("xml"),
                                  settingUp("stylesheet"),
                                  {"xml.transformNode(stylesheet)", "hold", "CoUninitialize",
                                   "stylesheet.Release", "xml.Release", "drop"}})));
    expectNothingLeaked();
}

TEST_F(XSLTCalls, AskForDocumentsOfVersionSixInThisProcess) {
    constexpr GUID component = {
        0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
    constexpr GUID document = {
        0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

    transform();

    ASSERT_EQ(2u, m_component.creations().size());
    for (auto const& creation : m_component.creations()) {
        EXPECT_EQ(component, creation.component);
        EXPECT_FALSE(creation.aggregated);
        EXPECT_EQ(1u, creation.context);
        EXPECT_EQ(document, creation.documentInterface);
    }
}

TEST_F(XSLTCalls, GiveThePathsAsTheyCame) {
    XSLTtoString(L"relative/\u65e5 %s.xml", L"", &m_result);

    ASSERT_EQ(2u, m_component.loads().size());
    EXPECT_EQ(textVariant, m_component.loads()[0].type);
    EXPECT_EQ(L"relative/\u65e5 %s.xml", m_component.loads()[0].text);
    EXPECT_EQ(textVariant, m_component.loads()[1].type);
    EXPECT_EQ(L"", m_component.loads()[1].text);
}

TEST_F(XSLTCalls, GiveTheTextAndTheResultOfTheTransform) {
    EXPECT_EQ(0, transform());

    EXPECT_EQ("made", m_result);
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(XSLTCalls, PassOnAnUnusualSuccessOfTheTransform) {
    m_component.answers["xml.transformNode(stylesheet)"] = S_FALSE;

    EXPECT_EQ(1, transform());

    EXPECT_EQ("made", m_result);
}

TEST_F(XSLTCalls, PassOnNoUnusualSuccessOfAnotherStep) {
    for (auto const* call :
         {"CoInitialize", "xml.create", "xml.load", "stylesheet.create", "stylesheet.load"})
        m_component.answers[call] = S_FALSE;

    EXPECT_EQ(0, transform());

    EXPECT_EQ("made", m_result);
    EXPECT_TRUE(called("CoUninitialize"));
}

TEST_F(XSLTCalls, TakeNoTextForAnEmptyOne) {
    m_component.output.reset();

    EXPECT_EQ(0, transform());

    EXPECT_EQ("", m_result);
    expectNothingLeaked();
}

TEST_F(XSLTCalls, TakeAnEmptyText) {
    m_component.output = L"";

    EXPECT_EQ(0, transform());

    EXPECT_EQ("", m_result);
    expectNothingLeaked();
}

TEST_F(XSLTCalls, GoOnInAnApartmentOfTheOtherKindWithoutLeavingIt) {
    m_component.answers["CoInitialize"] = static_cast<HRESULT>(0x80010106);

    EXPECT_EQ(0, transform());

    EXPECT_EQ("made", m_result);
    EXPECT_FALSE(called("CoUninitialize"));
    expectNothingLeaked();
}

TEST_F(XSLTCalls, GoWithoutHoldingAModuleThatIsNotThere) {
    m_component.answers["hold"] = E_FAIL;

    EXPECT_EQ(0, transform());

    EXPECT_TRUE(called("xml.Release"));
}

TEST_P(XSLTOption, IsNotAskedWhetherItWasTaken) {
    m_component.answers[GetParam()] = E_NOTIMPL;

    EXPECT_EQ(0, transform());

    EXPECT_EQ("made", m_result);
    EXPECT_TRUE(called("xml.transformNode(stylesheet)"));
}

TEST_P(XSLTStep, EndsItWhereItFails) {
    m_component.answers[GetParam().call] = E_ACCESSDENIED;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_EQ("before", m_result);
    expectNothingLeaked();
}

TEST_P(XSLTStep, IsFollowedByTheEndAlone) {
    m_component.answers[GetParam().call] = E_ACCESSDENIED;

    transform();

    Calls end{"hold", "CoUninitialize"};
    end.insert(end.end(), GetParam().behind.begin(), GetParam().behind.end());
    end.push_back("drop");
    auto const& calls = m_component.calls();
    auto behind = std::find(calls.begin(), calls.end(), GetParam().call);
    ASSERT_NE(calls.end(), behind);
    Calls rest(std::next(behind), calls.end());
    // The parser's error goes as soon as it has been asked.
    rest.erase(
        std::remove_if(
            rest.begin(), rest.end(),
            [](auto const& call) { return call.find(".error.Release") != std::string::npos; }),
        rest.end());
    EXPECT_EQ(end, rest);
}

TEST_P(XSLTStep, LogsNothingWhereItFails) {
    m_component.answers[GetParam().call] = E_ACCESSDENIED;

    transform();

    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(XSLTCalls, EndWhereTheFirstPathCannotBePassed) {
    m_component.failingText = 1;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_EQ("before", m_result);
    EXPECT_THAT(m_component.loads(), IsEmpty());
    EXPECT_FALSE(called("stylesheet.create"));
    EXPECT_TRUE(called("CoUninitialize"));
    expectNothingLeaked();
}

TEST_F(XSLTCalls, EndWhereTheSecondPathCannotBePassed) {
    m_component.failingText = 2;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_EQ("before", m_result);
    EXPECT_EQ(1u, m_component.loads().size());
    EXPECT_FALSE(called("xml.transformNode(stylesheet)"));
    expectNothingLeaked();
}

TEST_P(XSLTDocument, ThatIsRejectedIsLoggedWithPathAndReason) {
    m_component.flags[GetParam()] = 0;
    m_component.reason = L"line 7: 100%s";

    transform();

    auto const path = GetParam() == std::string("xml") ? L"C:\\a.xml" : L"C:\\b.xsl";
    ASSERT_EQ(1u, m_log.lines().size());
    auto const line = m_log.lines().front();
    EXPECT_EQ(7, line.level);
    EXPECT_EQ(L"vrUtils", line.module);
    EXPECT_EQ(L"XSLT transform failed : %s\n%s", line.format);
    EXPECT_EQ(std::wstring(L"XSLT transform failed : ") + path + L"\nline 7: 100%s", line.text());
}

TEST_P(XSLTDocument, ThatIsRejectedDoesNotKeepTheTransformFromBeingTried) {
    m_component.flags[GetParam()] = 0;
    m_component.answers["xml.transformNode(stylesheet)"] = E_FAIL;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_TRUE(called("xml.transformNode(stylesheet)"));
    EXPECT_EQ("before", m_result);
    expectNothingLeaked();
}

TEST_P(XSLTDocument, ThatIsRejectedFailsThoughTheTransformSucceeds) {
    m_component.flags[GetParam()] = 0;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_TRUE(called("xml.transformNode(stylesheet)"));
    EXPECT_EQ("before", m_result);
    expectNothingLeaked();
}

TEST_P(XSLTDocument, IsTakenOnlyByTheOneTrueFlag) {
    m_component.flags[GetParam()] = 1;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_EQ(1u, m_log.lines().size());
}

TEST_P(XSLTDocument, ThatIsRejectedWithoutAReasonIsLoggedWithAnEmptyOne) {
    m_component.flags[GetParam()] = 0;
    m_component.reason.reset();

    EXPECT_EQ(TransformFailed, transform());

    ASSERT_EQ(1u, m_log.lines().size());
    auto const values = m_log.lines().front().values;
    ASSERT_EQ(2u, values.size());
    EXPECT_NE(0u, values[1].word);
    EXPECT_EQ(L"", values[1].text);
    expectNothingLeaked();
}

TEST_P(XSLTDocument, ThatFailsToLoadIsNotAskedForAReason) {
    m_component.flags[GetParam()] = 0;
    m_component.answers[GetParam() + std::string(".load")] = E_FAIL;

    EXPECT_EQ(TransformFailed, transform());

    EXPECT_FALSE(called(GetParam() + std::string(".get_parseError")));
}

TEST_F(XSLTCalls, LogBothDocumentsInTheirOrder) {
    m_component.flags = {{"xml", short{0}}, {"stylesheet", short{0}}};

    transform();

    EXPECT_THAT(
        m_log.texts(), ElementsAre(
                           L"XSLT transform failed : C:\\a.xml\nnot well formed",
                           L"XSLT transform failed : C:\\b.xsl\nnot well formed"));
}

TEST_F(XSLTCalls, ConvertByTheSystemsCodePageAndItsOwnCharacter) {
    Conversion const conversion(0);
    m_component.output = L"\u20ac\u65e5";

    transform();

    EXPECT_EQ(2u, conversion.calls());
    EXPECT_THAT(conversion.unusual(), IsEmpty());
    EXPECT_EQ("\x80?", m_result);
}

class XSLTConversion : public XSLTCalls, public testing::WithParamInterface<unsigned> {};

INSTANTIATE_TEST_SUITE_P(, XSLTConversion, testing::Values(1u, 2u));

TEST_P(XSLTConversion, ThatFailsIsAShortageOfMemoryAndDoesNotLeaveCom) {
    Conversion const conversion(GetParam());

    EXPECT_THROW(transform(), std::bad_alloc);

    EXPECT_EQ("before", m_result);
    EXPECT_FALSE(called("CoUninitialize"));
    expectNothingLeaked();
}

TEST_F(XSLTCalls, ReleaseAllWhenMemoryRunsOut) {
    makeLongOutput();
    test::AllocationCounter counter;
    counter.failAt(1);

    EXPECT_THROW(transform(), std::bad_alloc);

    EXPECT_EQ("before", m_result);
    EXPECT_FALSE(called("CoUninitialize"));
    EXPECT_TRUE(called("stylesheet.Release"));
    EXPECT_TRUE(called("xml.Release"));
    expectNothingLeaked();
}

TEST_F(XSLTCalls, AllocateTheTextAlone) {
    makeLongOutput();
    test::AllocationCounter const counter;

    transform();

    EXPECT_EQ(1u, counter.allocations());
    EXPECT_EQ(std::string(100, 'x'), m_result);
}
