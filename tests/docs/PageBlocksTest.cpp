// What pages show beside C++: a report, and a dialogue with vrtool.

#include "tests/docs/PageBlocks.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/ScratchFolder.h"

#include <vrUtils/XSLT.h>

#include <gmock/gmock.h>

#include <algorithm>

using testing::AllOf;
using testing::HasSubstr;

namespace {

// Lines that the user types stand alone on the page too.
bool isAnswer(std::string const& line) {
    return line == "yes" || line == "no" || line == "done" || line == "undo";
}

// A dialogue of the page: what is typed, and what it answers.
struct Dialogue {
    std::string typed;
    std::string answered;
};

Dialogue dialogueOf(std::string const& block) {
    constexpr std::size_t indent = 4;
    Dialogue dialogue;
    std::istringstream lines(block);
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, indent);
        (isAnswer(line) ? dialogue.typed : dialogue.answered) += line + '\n';
    }
    return dialogue;
}

void replaceAll(std::string& text, std::string const& old, std::string const& replacement) {
    for (auto at = text.find(old); at != std::string::npos; at = text.find(old, at))
        text.replace(at, old.size(), replacement);
}

// vrtool with these lines as its input.
std::string talk(test::ScratchFolder const& answers, std::wstring const& file) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    test::OwnedHandle const input(CreateFileW(
        answers.file(L"answers").c_str(), GENERIC_READ, FILE_SHARE_READ, &inherited, OPEN_EXISTING,
        0, nullptr));
    test::ChildStart start;
    start.program = test::besideTestProgram(L"vrtool.exe");
    start.input = input.get();
    auto output = test::ChildProcess({L"remove", file, L"--recoverable"}, start).output();
    output.erase(std::remove(output.begin(), output.end(), '\r'), output.end());
    return output;
}

} // namespace

TEST(PreflightPage, ShowsAReportThatIsNotFitForAir) {
    test::ScratchFolder const folder;
    auto const report = folder.write(L"clip.xml", test::pageBlock("preflight.md", "```xml", "```"));
    std::string page;

    ASSERT_LE(
        0, vrUtils::XSLT::XSLTtoString(report, test::besideTestProgram(L"preflight.xsl"), &page));
    EXPECT_THAT(
        page, AllOf(
                  HasSubstr("Not fit for air"), HasSubstr("Audio tracks"),
                  HasSubstr("MXF OP1a, 1920 x 1080, 25 frames/s")));
}

TEST(VrtoolPage, ShowsTheDialogueOfARemoval) {
    auto const dialogue = dialogueOf(
        test::pageBlock("vrtool.md", R"(    > vrtool remove C:\Media\clip.mxf --recoverable)", ""));
    test::ScratchFolder const answers;
    answers.write(L"answers", dialogue.typed);
    test::ScratchFolder const folder;
    auto const file = folder.write(L"clip.mxf", "movie");

    auto answered = talk(answers, file);
    replaceAll(answered, test::utf8(folder.path()), R"(C:\Media)");

    EXPECT_EQ(dialogue.answered, answered);
    EXPECT_EQ("movie", folder.read(L"clip.mxf"));
}
