#include "vrUtils/vrException.h"

#include "foundation/FailureCodes.h"
#include "foundation/Text.h"

vrException::vrException() = default;

vrException::vrException(
    std::string const& file, std::uint32_t line, std::wstring const& message, std::uint32_t code)
    : m_code(code),
      m_file(vrUtils::Strings::narrowToWide(file)),
      m_line(line),
      m_message(message) {}

vrException::vrException(std::uint32_t line, std::wstring const& message)
    : vrException("Files", line, message, vrUtils::GeneralFailure) {}

vrException::vrException(std::wstring const& message, std::uint32_t code)
    : m_code(code), m_message(message) {}

vrException::vrException(vrException const&) = default;
vrException& vrException::operator=(vrException const&) = default;
vrException::~vrException() = default;
