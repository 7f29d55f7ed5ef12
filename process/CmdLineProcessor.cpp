#include "vrUtils/CmdLineProcessor.h"

#include <algorithm>
#include <utility>

namespace vrUtils::CmdLineProcessor {

namespace {

constexpr wchar_t separators[] = L"\t ";
constexpr wchar_t quote = L'"';

} // namespace

void Processor::Process(std::wstring const& commandLine) {
    std::uint64_t position = 0;
    std::wstring parameter;
    while (_getNextParamFromCmdLine(commandLine, &position, &parameter))
        m_parameters.push_back(std::move(parameter));
}

std::uint64_t Processor::GetNumParameters() const { return m_parameters.size(); }

std::wstring Processor::GetParameter(std::uint64_t index) const {
    return index < m_parameters.size() ? m_parameters[index] : std::wstring();
}

bool Processor::_getNextParamFromCmdLine(
    std::wstring const& commandLine, std::uint64_t* position, std::wstring* parameter) {
    if (*position >= commandLine.size())
        return false;
    auto start = commandLine.find_first_not_of(separators, *position);
    if (start == std::wstring::npos)
        return false;

    std::size_t end;
    if (commandLine[start] != quote) {
        end = std::min(commandLine.find_first_of(separators, start), commandLine.size());
    } else {
        ++start;
        end = commandLine.find(quote, start);
        if (end == std::wstring::npos)
            throw BadCommandLineException(L"Mismatched quotes in Command Line");
    }

    // Behind the quote or separator: a quoted parameter needs no separator behind it.
    *position = end + 1;
    parameter->assign(commandLine, start, end - start);
    return true;
}

} // namespace vrUtils::CmdLineProcessor
