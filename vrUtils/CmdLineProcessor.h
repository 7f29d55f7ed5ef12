#ifndef VRUTILS_CMDLINEPROCESSOR_H
#define VRUTILS_CMDLINEPROCESSOR_H

/// @file
/// Splitting of command lines.

#include "vrUtils/vrException.h"

#include <cstdint>
#include <deque>
#include <string>

namespace vrUtils::CmdLineProcessor {

/// A malformed command line: code 0x80E0603D, no source name and line 0.
class VRUTILS_API BadCommandLineException : public vrException {
  public:
    /// @param text becomes the message, such as "Mismatched quotes in Command Line"
    explicit BadCommandLineException(std::wstring const& text) : vrException(text, 0x80E0603D) {}
};

/// Cuts command lines into parameters and keeps them in order.
///
/// Blanks and tabs separate parameters, and nothing else does: a line feed is part of a word. A
/// double quote that begins a parameter takes it to the next double quote, which ends it whatever
/// follows: `"a"b` is two parameters, and `""` is an empty one. A double quote inside a word is an
/// ordinary character, and so is every backslash; nothing is escaped.
///
/// Copies are independent. An object belongs to one thread at a time.
class VRUTILS_API Processor {
  public:
    /// Adds the parameters of a text to those that are there.
    /// @throws BadCommandLineException "Mismatched quotes in Command Line"; the parameters in front
    ///         of the quote have been added then
    void Process(std::wstring const& commandLine);

    /// How many parameters there are.
    std::uint64_t GetNumParameters() const;

    /// A parameter; the empty text at and past the end.
    /// @param index from 0
    std::wstring GetParameter(std::uint64_t index) const;

  private:
    static bool _getNextParamFromCmdLine(
        std::wstring const& commandLine, std::uint64_t* position, std::wstring* parameter);

    std::deque<std::wstring> m_parameters;
};

} // namespace vrUtils::CmdLineProcessor

#endif
