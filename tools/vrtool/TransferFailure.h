#ifndef TOOLS_VRTOOL_TRANSFERFAILURE_H
#define TOOLS_VRTOOL_TRANSFERFAILURE_H

#include "vrUtils/Path.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

// Why one file could not be carried, in words for the operator.
class TransferFailure : public std::exception {
  public:
    explicit TransferFailure(std::wstring text) : m_text(std::move(text)) {}

    // Something that cannot be done with a file, and the platform's reason:
    // `cannot read "C:\a.wav": Sharing violation (error 32)`.
    TransferFailure(std::wstring const& what, vr::Path const& path, std::uint32_t error);

    char const* what() const noexcept override { return "the transfer of a file failed"; }

    std::wstring const& text() const noexcept { return m_text; }

  private:
    std::wstring m_text;
};

// The operator has called the transfer off.
class TransferCancelled : public std::exception {
  public:
    char const* what() const noexcept override { return "the transfer was cancelled"; }
};

// The path in quotes, for texts.
std::wstring quoted(vr::Path const& path);

#endif
