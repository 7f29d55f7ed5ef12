#ifndef VRUTILS_VREXCEPTION_H
#define VRUTILS_VREXCEPTION_H

/// @file
/// How the library reports failure.
///
/// A failure that leaves the caller without a result is thrown by value and caught by reference.
/// The classes are not one tree: `vrException` and what derives from it carry a code, a place and
/// a message; the storage and host classes and `vrInvalidIndexPathException` are plain values
/// beside it, so a handler names the class it means. None of them is a `std::exception`. A failed
/// allocation stays `std::bad_alloc`.
///
/// Exceptions hold no shared state: copies are independent and may go to other threads.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <string>

/// A failure with its code, the place of the throw and a message for a person.
///
/// @code
/// try {
///     vrUtils::Files::LoadSmallFile(path, 65536, &bytes);
/// } catch (vrException const& failure) {
///     std::wcerr << failure.message() << L'\n';
/// }
/// @endcode
class VRUTILS_API vrException {
  public:
    /// Code 0, line 0, empty source name and empty message.
    vrException();

    /// A failure with all its fields.
    /// @param file source name of the throwing unit; widened through the system's ANSI code page
    /// @param line source line of the throw
    /// @param message what went wrong
    /// @param code failure code in the form of a Windows result code, top bit set
    vrException(
        std::string const& file, std::uint32_t line, std::wstring const& message,
        std::uint32_t code);

    /// For the file layer only: source name "Files", code 0x80004005.
    vrException(std::uint32_t line, std::wstring const& message);

    /// Copies are independent.
    vrException(vrException const&);
    /// Takes over all fields.
    vrException& operator=(vrException const&);
    virtual ~vrException();

    /// Failure code; 0 in a default-built exception.
    std::uint32_t code() const noexcept { return m_code; }

    /// Source name of the throwing unit; may be empty.
    std::wstring const& file() const noexcept { return m_file; }

    /// Source line of the throw; may be 0.
    std::uint32_t line() const noexcept { return m_line; }

    /// The message; may be empty.
    std::wstring const& message() const noexcept { return m_message; }

  protected:
    /// Code and message with no place, for the classes that need no other.
    vrException(std::wstring const& message, std::uint32_t code);

  private:
    std::uint32_t m_code = 0;
    std::wstring m_file;
    std::uint32_t m_line = 0;
    std::wstring m_message;
};

/// A `UtilValue` was read before it was set: code 0x80004005, source name "UtilValue", line 58,
/// message "Value not set".
class VRUTILS_API vrUnsetValueException : public vrException {
  public:
    /// The constructors of `vrException`.
    using vrException::vrException;
    /// All fields of another failure, under this class.
    explicit vrUnsetValueException(vrException const& failure) : vrException(failure) {}
};

#endif
