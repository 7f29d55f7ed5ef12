#include "vrUtils/Process/ExternalProcess.h"

#include "foundation/Text.h"
#include "process/ExternalProcessImplementation.h"

namespace vrUtils::Process {

ExternalProcess::cmdArg& ExternalProcess::cmdArg::add(std::wstring const& argument) {
    m_process.addArg(argument);
    return *this;
}

ExternalProcess::cmdArg& ExternalProcess::cmdArg::operator<<(std::wstring const& argument) {
    return add(argument);
}

ExternalProcess::ExternalProcess(
    std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule)
    : m_implementation(std::make_shared<Impl::ExternalProcessBlockingImplementation>(
          name, timeoutSeconds, logModule)) {}

ExternalProcess::ExternalProcess(
    std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule,
    ExternalProcessCallback* callback, std::uint32_t pollIntervalMs)
    : m_implementation(std::make_shared<Impl::ExternalProcessWithCallbackImplementation>(
          name, timeoutSeconds, logModule, callback, pollIntervalMs)) {}

ExternalProcess::ExternalProcess(std::wstring const& name, std::wstring const& logModule)
    : m_implementation(
          std::make_shared<Impl::ExternalProcessNonBlockingImplementation>(name, 0, logModule)) {}

ExternalProcess& ExternalProcess::operator=(ExternalProcess const&) = default;

ExternalProcess::~ExternalProcess() = default;

void ExternalProcess::addArg(std::wstring const& argument) {
    auto& line = m_implementation->commandLine();
    if (!line.empty())
        line += L' ';
    line += quoteArg(Strings::trim(argument, L" \t"));
}

void ExternalProcess::addRawArg(std::wstring const& text) {
    m_implementation->commandLine() += text;
}

std::wstring ExternalProcess::quoteArg(std::wstring const& argument) {
    if (argument.find_first_of(L"\"&|'<> \t") == std::wstring::npos)
        return argument;

    std::wstring quoted;
    quoted.reserve(argument.size() + 2);
    quoted += L'"';
    for (auto const character : argument) {
        if (character == L'"')
            quoted += L'"';
        quoted += character;
    }
    quoted += L'"';
    return quoted;
}

std::wstring& ExternalProcess::rawCommandLine() { return m_implementation->commandLine(); }

std::wstring const& ExternalProcess::commandLine() const { return m_implementation->commandLine(); }

ExternalProcess::cmdArg ExternalProcess::args() { return cmdArg(*this); }

void ExternalProcess::SetWorkingDirectory(std::wstring const& folder) {
    m_implementation->setWorkingDirectory(folder);
}

void ExternalProcess::SetEnv(std::wstring const& key, std::wstring const& value) {
    m_implementation->setVariable(key, value);
}

std::int32_t ExternalProcess::Execute() const { return m_implementation->Execute(); }

} // namespace vrUtils::Process
