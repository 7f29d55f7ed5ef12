#include "tests/examples/ExampleRun.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace test {

std::string ExampleRun::firstMissing(std::vector<std::string> const& lines) const {
    // Each line begins behind the break that ends the one in front of it.
    auto const text = '\n' + output;
    std::size_t at = 0;
    for (auto const& line : lines) {
        at = text.find('\n' + line + '\n', at);
        if (at == std::string::npos)
            return line;
        at += line.size() + 1;
    }
    return {};
}

ExampleRun runExample(std::string const& name, std::vector<std::wstring> const& arguments) {
    ScratchFolder const temporary;
    ScratchFolder const log;
    ChildStart start;
    start.program = besideTestProgram(fromUtf8(name) + L".exe");
    start.environment = {
        {L"TMP", temporary.path()},
        {L"TEMP", temporary.path()},
        {L"VORRANELOG_FILE", log.file(L"example.log")},
        {L"VORRANELOG_LEVEL", L"6"}};

    ChildProcess const child(arguments, start);
    auto const exitCode = child.exitCode();
    auto output = child.output();
    output.erase(std::remove(output.begin(), output.end(), '\r'), output.end());
    return {exitCode, output, temporary.names()};
}

void expectLesson(Example const& example) {
    auto const run = runExample(example.name);

    EXPECT_EQ(0u, run.exitCode) << run.output;
    EXPECT_EQ("", run.firstMissing(example.lines)) << run.output;
    EXPECT_THAT(run.leftBehind, testing::IsEmpty());
}

} // namespace test
