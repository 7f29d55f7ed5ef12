#include "tests/docs/Sample.h"

#include <algorithm>
#include <cwctype>
#include <iostream>

namespace test {

namespace {

// A program that logs nothing by itself has no call to record.
std::unique_ptr<LogRecorder const> recorderOfThisProgram() {
    try {
        return std::make_unique<LogRecorder const>(GetModuleHandleW(nullptr));
    } catch (std::runtime_error const&) {
        return nullptr;
    }
}

void replaceAll(std::wstring& text, std::wstring const& old, std::wstring const& replacement) {
    for (auto at = text.find(old); at != std::wstring::npos;
         at = text.find(old, at + replacement.size()))
        text.replace(at, old.size(), replacement);
}

// Both narrow and wide output of a program, in the order of their streams.
class CapturedOutput {
  public:
    CapturedOutput() = default;
    CapturedOutput(CapturedOutput const&) = delete;
    CapturedOutput& operator=(CapturedOutput const&) = delete;

    ~CapturedOutput() {
        std::wcerr.rdbuf(m_wideErrors);
        std::wcout.rdbuf(m_wideOutput);
        std::cout.rdbuf(m_output);
    }

    std::wstring text() const { return fromUtf8(m_narrow.str()) + m_wide.str(); }

  private:
    std::ostringstream m_narrow;
    std::wostringstream m_wide;
    std::streambuf* m_output = std::cout.rdbuf(m_narrow.rdbuf());
    std::wstreambuf* m_wideOutput = std::wcout.rdbuf(m_wide.rdbuf());
    std::wstreambuf* m_wideErrors = std::wcerr.rdbuf(m_wide.rdbuf());
};

} // namespace

bool matchesPage(std::string const& text, std::string const& shown) {
    if (shown == "(empty)")
        return text.empty();
    auto const gap = shown.rfind("...");
    if (gap == std::string::npos)
        return text == shown;
    auto const tail = shown.substr(gap + 3);
    if (text.size() < tail.size() ||
        text.compare(text.size() - tail.size(), tail.size(), tail) != 0)
        return false;

    // What stands between two gaps is taken at its first place.
    std::size_t at = 0;
    for (std::size_t begin = 0; begin <= gap;) {
        auto const end = shown.find("...", begin);
        auto const piece = shown.substr(begin, end - begin);
        auto const found = begin == 0
                               ? text.compare(0, piece.size(), piece) == 0 ? 0 : std::string::npos
                               : text.find(piece, at);
        if (found == std::string::npos)
            return false;
        at = found + piece.size();
        begin = end + 3;
    }
    return at + tail.size() <= text.size();
}

Sample::Sample()
    : m_ownLines(recorderOfThisProgram()),
      folder(m_scratch.path() + L'\\', vr::Path::eFolder),
      clip(m_scratch.write(L"clip.mxf", "movie"), vr::Path::eFile),
      source(m_scratch.file(L"incoming\\clip.mxf"), vr::Path::eFile) {}

Sample::~Sample() {
    if (m_answer.joinable())
        m_answer.join();
}

void Sample::TearDown() {
    EXPECT_EQ(m_promised, m_reached.size()) << "statements that promise something were come to";
}

std::string Sample::onPage(std::wstring text) const {
    auto lowered = m_scratch.path();
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), std::towlower);
    replaceAll(text, m_scratch.path(), L"C:\\Media");
    replaceAll(text, lowered, L"c:\\media");
    return utf8(text);
}

testing::AssertionResult
Sample::logged(int level, std::string const& module, std::string const& text) const {
    auto const lines = m_lines.lines();
    for (auto const& line : lines)
        if (line.level == level && matchesPage(onPage(line.module), module) &&
            matchesPage(onPage(line.text()), text))
            return testing::AssertionSuccess();
    return testing::AssertionFailure() << "not among " << testing::PrintToString(lines);
}

void Sample::expectProgram(int (*program)(), std::string const& printed) const {
    CapturedOutput const output;
    auto const result = program();

    EXPECT_EQ(0, result);
    auto text = output.text();
    while (!text.empty() && text.back() == L'\n')
        text.pop_back();
    EXPECT_PRED2(matchesPage, onPage(text), printed);
}

void Sample::changeInPlace(vr::Path const& file) {
    vrUtils::Files::SaveSmallFile({'m', 'o', 'v', 'e', 'd'}, file);
}

bool Sample::transfer(vr::Path const& from, vr::Path const& to) try {
    std::vector<char> bytes;
    vrUtils::Files::LoadSmallFile(from, 1 << 20, &bytes);
    vrUtils::Files::SaveSmallFile(bytes, to);
    return true;
} catch (vrException const&) {
    return false;
}

bool Sample::recovers(vrUtils::Storage::RecoverableFileDeleter& deleter) try {
    deleter.Recover();
    return true;
} catch (vrUtils::Storage::vrCopyFileException const&) {
    return false;
}

std::uint16_t Sample::startServer() {
    m_server.emplace();
    m_answer = std::thread([this] {
        auto const client = m_server->accept();
        if (client.receive(5) == "rate?")
            client.send("25");
        client.receive(1); // nothing: the client has closed its side
    });
    return m_server->port();
}

std::uint32_t Sample::startTool() {
    m_tool.emplace(std::vector<std::wstring>{L"sleep"});
    return m_tool->id();
}

} // namespace test
