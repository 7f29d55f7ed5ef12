// From a request as it arrives to the names it asks for: escapes first, then the character set,
// then lines. The escapes give raw bytes; which characters they are is for the host to know.

#include <vrUtils/Strings.h>
#include <vrUtils/vrException.h>

#include <iostream>
#include <string>

namespace {

// The senders of these requests write plain ASCII.
std::wstring widened(std::string const& ascii) { return {ascii.begin(), ascii.end()}; }

void printNames(std::string const& request) {
    auto const text = widened(vrUtils::Strings::DecodeURL(request));
    for (auto const& name : vrUtils::Strings::BreakMultiLineString(text))
        std::wcout << L"asked for: " << name << L'\n';
}

} // namespace

int main() {
    try {
        printNames("Clip%201.mxf%0D%0AClip%202.mxf%0D%0A%0D%0A100%25.mxf");
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }

    try {
        printNames("Clip%2");
        return 1;
    } catch (vrException const& failure) {
        std::wcout << L"refused: " << failure.message() << L'\n';
    }

    // The kind of a file stands in its first four bytes, and this is how a log shows it.
    std::wcout << L"kind: " << vrUtils::Strings::FourCCToString(0x52494646) << L'\n';
    return 0;
}
