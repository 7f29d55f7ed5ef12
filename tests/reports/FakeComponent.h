#ifndef TESTS_REPORTS_FAKECOMPONENT_H
#define TESTS_REPORTS_FAKECOMPONENT_H

// An XML component that does as a test says, in place of the platform's. It notes each call of the
// library on COM, on the two documents and on the parser's errors, in their order:
//
//     test::FakeComponent component;
//     component.answers["stylesheet.load"] = E_FAIL;
//     EXPECT_EQ(TransformFailed, XSLTtoString(L"a.xml", L"b.xsl", &result));
//     EXPECT_EQ("CoUninitialize", component.calls().at(11));
//     EXPECT_EQ(0u, component.unreleased());

#include "foundation/Platform.h"

#include <guiddef.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test {

// What the library asked COM for to get a document.
struct Creation {
    GUID component{};
    bool aggregated = true;
    DWORD context = 0;
    GUID documentInterface{};
};

// What a document was told to read.
struct LoadArgument {
    unsigned short type = 0;
    std::wstring text;
};

class FakeComponent {
  public:
    class Hooks;

    FakeComponent();
    FakeComponent(FakeComponent const&) = delete;
    FakeComponent& operator=(FakeComponent const&) = delete;
    ~FakeComponent();

    // The results of calls, by the names under which `calls` shows them; S_OK for all others. What
    // a call that fails would have made is not made.
    std::map<std::string, HRESULT> answers;

    // The flag with which a document, by its name, takes what it reads.
    std::map<std::string, short> flags;

    // What the parser says and what comes of the transform; none for a null text.
    std::optional<std::wstring> reason = L"not well formed";
    std::optional<std::wstring> output = L"made";

    // Which making of a text argument fails, from 1; 0 for none.
    unsigned failingText = 0;

    // "CoInitialize", "CoUninitialize", "hold" and "drop" of the component's module; of a document,
    // which is "xml" or "stylesheet", "xml.create", "xml.put_async(0)", "xml.load",
    // "xml.error.get_reason", "xml.transformNode(stylesheet)" and so on.
    std::vector<std::string> const& calls() const;

    std::vector<Creation> const& creations() const;

    std::vector<LoadArgument> const& loads() const;

    // Objects and texts that the library has been given, or has made, and not released.
    std::size_t unreleased() const;

    // Releases of what was not there to be released.
    std::size_t releasedTwice() const;

  private:
    std::unique_ptr<Hooks> m_hooks;
};

} // namespace test

#endif
