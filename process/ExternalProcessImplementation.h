#ifndef PROCESS_EXTERNALPROCESSIMPLEMENTATION_H
#define PROCESS_EXTERNALPROCESSIMPLEMENTATION_H

#include "foundation/Platform.h"
#include "vrUtils/Process/ExternalProcess.h"

#include <cstdint>
#include <map>
#include <string>

namespace vrUtils::Process::Impl {

// What a program is run with, and the wait that blocks. There is no virtual destructor: each object
// is of a class that is final, and destroyed as what it was made as.
class ExternalProcessImplementation {
  public:
    ExternalProcessImplementation(
        std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule);

    std::wstring& commandLine() noexcept { return m_commandLine; }

    void setWorkingDirectory(std::wstring const& folder) { m_workingDirectory = folder; }

    void setVariable(std::wstring const& key, std::wstring const& value) {
        m_environment[key] = value;
    }

    std::int32_t Execute() const;

  protected:
    ~ExternalProcessImplementation() = default;

    // Waits for the program that was started.
    // @return what Execute gives
    virtual std::int32_t WaitForProcess(PROCESS_INFORMATION const& process) const;

    // Tells how a program ended that has ended.
    std::int32_t reportExit(PROCESS_INFORMATION const& process) const;

    std::int32_t reportTimeout() const;

    std::uint32_t timeoutMs() const noexcept { return m_timeoutMs; }

  private:
    void logStart() const;
    // Only where the caller has named a module.
    void log(char level, std::wstring const& text) const;
    std::wstring environmentBlock() const;

    std::uint32_t m_timeoutMs;
    std::wstring m_commandLine;
    std::wstring m_name;
    std::wstring m_logModule;
    std::wstring m_workingDirectory;
    // In the order in which the program receives them.
    std::map<std::wstring, std::wstring> m_environment;
};

class ExternalProcessBlockingImplementation final : public ExternalProcessImplementation {
  public:
    using ExternalProcessImplementation::ExternalProcessImplementation;
};

class ExternalProcessWithCallbackImplementation final : public ExternalProcessImplementation {
  public:
    ExternalProcessWithCallbackImplementation(
        std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule,
        ExternalProcessCallback* callback, std::uint32_t pollIntervalMs);

  private:
    std::int32_t WaitForProcess(PROCESS_INFORMATION const& process) const override;

    ExternalProcessCallback* m_callback;
    std::uint32_t m_pollIntervalMs;
};

class ExternalProcessNonBlockingImplementation final : public ExternalProcessImplementation {
  public:
    using ExternalProcessImplementation::ExternalProcessImplementation;

  private:
    std::int32_t WaitForProcess(PROCESS_INFORMATION const& process) const override;
};

} // namespace vrUtils::Process::Impl

#endif
