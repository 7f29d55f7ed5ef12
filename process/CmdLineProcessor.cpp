#include "vrUtils/CmdLineProcessor.h"

#include <algorithm>
#include <utility>

namespace vrUtils::CmdLineProcessor {

namespace {

constexpr wchar_t quote = L'"';

bool isSeparator(wchar_t character) { return character == L'\t' || character == L' '; }

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
    auto const begin = commandLine.begin();
    auto const textEnd = commandLine.end();
    auto start =
        std::find_if_not(begin + static_cast<std::ptrdiff_t>(*position), textEnd, isSeparator);
    if (start == textEnd)
        return false;

    auto end = textEnd;
    if (*start != quote) {
        end = std::find_if(start, textEnd, isSeparator);
    } else {
        ++start;
        end = std::find(start, textEnd, quote);
        if (end == textEnd)
            throw BadCommandLineException(L"Mismatched quotes in Command Line");
    }

    // Right behind the quote or separator: a quoted parameter needs no separator behind it.
    *position = static_cast<std::uint64_t>(end - begin) + 1;
    parameter->assign(start, end);
    return true;
}

} // namespace vrUtils::CmdLineProcessor
