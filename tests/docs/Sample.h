#ifndef TESTS_DOCS_SAMPLE_H
#define TESTS_DOCS_SAMPLE_H

// What the C++ samples of the pages find, and how their promises are checked; `samples.py` tells what
// a promise looks like.

#include "tests/support/AbsentKey.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WideText.h"

#include <vrUtils/vrUtils.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace test {

// Values as pages show them.
inline std::wstring pageText(wchar_t const* value) { return value; }
inline std::wstring pageText(std::wstring const& value) { return value; }
inline std::wstring pageText(std::string const& value) { return fromUtf8(value); }
inline std::wstring pageText(vr::Path const& value) { return value.components().wholePath(); }

template <typename Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
std::wstring pageText(Number value) {
    if constexpr (std::is_same_v<Number, bool>)
        return value ? L"true" : L"false";
    else
        return std::to_wstring(value);
}

// A file's bytes are a text; the items of other lists stand one behind the other.
inline std::wstring pageText(std::vector<char> const& bytes) {
    return fromUtf8({bytes.data(), bytes.size()});
}

template <typename List, typename = decltype(std::declval<List>().front())>
std::wstring pageText(List const& values) {
    std::wstring text;
    for (auto const& value : values)
        text += (text.empty() ? L"" : L", ") + pageText(value);
    return text;
}

template <typename Number>
std::wstring pageHex(Number value) {
    std::wostringstream text;
    text << L"0x" << std::hex << std::uppercase << value;
    return text.str();
}

// What a failure tells, and its code if it has one.
inline std::wstring pageFailure(vrException const& failure) { return failure.message(); }
inline std::wstring pageFailure(vrUtils::Storage::vrStorageException const& failure) {
    return failure.text() + L", error " + std::to_wstring(failure.error());
}
inline std::wstring pageFailure(vrUtils::Files::vrInvalidIndexPathException const& failure) {
    return pageText(failure.path());
}
inline std::wstring pageFailure(vrUtils::Host::vrHostException const&) { return {}; }
inline std::wstring pageFailure(std::exception const& failure) { return fromUtf8(failure.what()); }

inline std::optional<std::uint32_t> pageCode(vrException const& failure) { return failure.code(); }

template <typename Failure>
std::enable_if_t<!std::is_base_of_v<vrException, Failure>, std::optional<std::uint32_t>>
pageCode(Failure const&) {
    return std::nullopt;
}

// Whether a text is what a page shows, where "..." stands for any text and "(empty)" for none.
bool matchesPage(std::string const& text, std::string const& shown);

// The fixture of a page's samples: what the pages take for granted.
class Sample : public testing::Test {
  protected:
    Sample();
    ~Sample() override;

    // So many statements of a sample promise something; each is to be come to.
    void promise(std::size_t statements) { m_promised = statements; }
    void reach(std::size_t statement) { m_reached.insert(statement); }
    void TearDown() override;

    // A text as pages show it, in which the scratch folder is C:\Media.
    std::string onPage(std::wstring text) const;

    // Whether such a line is among those that were logged so far.
    testing::AssertionResult
    logged(int level, std::string const& module, std::string const& text) const;

    // Runs a program that is to succeed and print this.
    void expectProgram(int (*program)(), std::string const& printed) const;

  private:
    ScratchFolder const m_scratch;
    // Lines that a sample logs itself, then those of the library: the younger one records both.
    std::unique_ptr<LogRecorder const> const m_ownLines;
    LogRecorder const m_lines;

  protected:
    // An empty folder but for one file, with a backslash at its end: `C:\Media\` on the pages.
    vr::Path const folder;
    // That file, `clip.mxf`, which holds "movie".
    vr::Path const clip;
    // A file that is not there, on a machine that is.
    vr::Path const source;

    // What a host does with its media.
    static void changeInPlace(vr::Path const& file);
    static bool transfer(vr::Path const& from, vr::Path const& to);
    static bool recovers(vrUtils::Storage::RecoverableFileDeleter& deleter);
    static void waitForTheOperator() {}

    // A server that takes one client and answers "rate?" with "25"; its port.
    std::uint16_t startServer();

    // A program that never ends by itself; its process id.
    std::uint32_t startTool();

  private:
    std::size_t m_promised = 0;
    std::set<std::size_t> m_reached;
    std::optional<LoopbackServer> m_server;
    std::thread m_answer;
    std::optional<ChildProcess> m_tool;
};

// On a machine on which the product was never set up. What samples make of it goes again.
class MachineSample : public Sample {
  private:
    AbsentKey const m_machineSettings{HKEY_LOCAL_MACHINE, L"Software\\Vorrane"};
    AbsentKey const m_userSettings{HKEY_CURRENT_USER, L"Software\\Vorrane"};
};

} // namespace test

// The samples' own lines are the place of these, so that a failure names the line of the page.
#define SHOWS_TEXT(shown, text) EXPECT_PRED2(test::matchesPage, onPage(text), std::string(shown))
#define SHOWS(shown, ...) SHOWS_TEXT(shown, test::pageText(__VA_ARGS__))
#define SHOWS_HEX(shown, ...) SHOWS_TEXT(shown, test::pageHex(__VA_ARGS__))
#define EQUALS(expected, ...) EXPECT_EQ(expected, (__VA_ARGS__))
#define LOGGED(level, module, text) EXPECT_TRUE(logged(level, module, text))
#define THROWS(Class, expectedCode, shown, ...)                                \
    try {                                                                      \
        __VA_ARGS__                                                            \
        ADD_FAILURE() << "nothing is thrown";                                  \
    } catch (Class const& thrown) {                                            \
        std::optional<std::uint32_t> const wantedCode{expectedCode};           \
        EXPECT_TRUE(typeid(Class) == typeid(thrown)) << typeid(thrown).name(); \
        if (wantedCode) {                                                      \
            EXPECT_EQ(wantedCode, test::pageCode(thrown));                     \
        }                                                                      \
        SHOWS_TEXT(shown, test::pageFailure(thrown));                          \
    }

#endif
