// A command line cut into its parameters.

#include "benchmarks/Candidate.h"

#include "foundation/Platform.h"
#include "vrUtils/CmdLineProcessor.h"

#include <shellapi.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::wstring const line = L"\"C:\\Program Files\\Vorrane\\transfer.exe\" --host interplay01 --port "
                          L"60772 \"C:\\Media\\Day "
                          L"1\\clip.mxf\" /quiet";

// The line again and again.
std::wstring repeated(std::size_t units) {
    std::wstring text;
    while (text.size() < units)
        text.append(line).append(1, L' ');
    return text;
}

std::uint64_t ours(std::wstring const& text) {
    vrUtils::CmdLineProcessor::Processor processor;
    processor.Process(text);
    return processor.GetNumParameters();
}

// What the platform gives, in strings that outlive its block.
std::vector<std::wstring> byPlatform(std::wstring const& text) {
    int count = 0;
    auto* const arguments = CommandLineToArgvW(text.c_str(), &count);
    std::vector<std::wstring> copies(arguments, arguments + count);
    LocalFree(arguments);
    return copies;
}

// The same rules by hand, for one program.
std::vector<std::wstring> byHand(std::wstring const& text) {
    std::vector<std::wstring> parameters;
    auto const* position = text.data();
    auto const* const end = position + text.size();
    while (position != end) {
        if (*position == L' ' || *position == L'\t') {
            ++position;
        } else if (*position == L'"') {
            auto const* const close = std::find(position + 1, end, L'"');
            parameters.emplace_back(position + 1, close);
            position = close == end ? end : close + 1;
        } else {
            auto const* const stop = std::find_if(
                position, end, [](wchar_t unit) { return unit == L' ' || unit == L'\t'; });
            parameters.emplace_back(position, stop);
            position = stop;
        }
    }
    return parameters;
}

} // namespace

void benchmarks::registerCandidates() {
    candidate("command-line", "ours", [] { return ours(line); });
    candidate("command-line", "CommandLineToArgvW", [] { return byPlatform(line); });
    candidate("command-line", "hand", [] { return byHand(line); });

    static auto const text64Ki = repeated(std::size_t{64} << 10);
    candidate("command-line-64Ki", "ours", [] { return ours(text64Ki); });
    candidate("command-line-64Ki", "hand", [] { return byHand(text64Ki); });

    static auto const text1Mi = repeated(std::size_t{1} << 20);
    candidate("command-line-1Mi", "ours", [] { return ours(text1Mi); });
    candidate("command-line-1Mi", "hand", [] { return byHand(text1Mi); });
}
