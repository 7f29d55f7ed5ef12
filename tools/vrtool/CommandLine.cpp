#include "tools/vrtool/CommandLine.h"

#include "tools/vrtool/Platform.h"
#include "tools/vrtool/Utf8.h"

#include <shellapi.h>

#include <algorithm>
#include <memory>
#include <system_error>

namespace {

// Cannot be part of a file name.
constexpr char mark = '\x01';

bool isSpecial(std::string const& argument) {
    char const first = argument.empty() ? '\0' : argument.front();
    return first == '[' || first == mark || argument == "++";
}

std::string marked(std::string const& argument) {
    return isSpecial(argument) ? mark + argument : argument;
}

std::string unmarked(std::string argument) {
    if (!argument.empty() && argument.front() == mark)
        argument.erase(0, 1);
    return argument;
}

} // namespace

std::vector<std::string> CommandLine::arguments() {
    int count = 0;
    auto const list = CommandLineToArgvW(GetCommandLineW(), &count);
    auto const error = GetLastError();
    if (!list)
        throw std::system_error(static_cast<int>(error), std::system_category(), "no arguments");
    std::unique_ptr<wchar_t*, decltype(&LocalFree)> const owner(list, LocalFree);

    std::vector<std::string> result;
    for (int index = count - 1; index > 0; --index)
        result.push_back(marked(toUtf8(list[index])));
    return result;
}

std::vector<std::wstring> CommandLine::valuesOf(CLI::Option const& option) {
    std::vector<std::wstring> values;
    for (auto const& value : option.results())
        values.push_back(fromUtf8(unmarked(value)));
    return values;
}

std::wstring CommandLine::textOf(CLI::Option const& option) {
    auto const values = valuesOf(option);
    return values.empty() ? std::wstring() : values.front();
}

std::string CommandLine::readable(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), mark), text.end());
    return text;
}
