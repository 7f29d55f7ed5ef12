#ifndef VRUTILS_PROCESS_EXTERNALPROCESS_H
#define VRUTILS_PROCESS_EXTERNALPROCESS_H

/// @file
/// Running another program.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vrUtils::Process {

/// The time limit passed, or the wait failed. The program runs on.
inline constexpr auto ExternalProcessTimedOut = static_cast<std::int32_t>(0x82000001);

/// The program could not be started, ended with an exit code other than 0, or its exit code could
/// not be read. The log tells which.
inline constexpr auto ExternalProcessFailed = static_cast<std::int32_t>(0x82000002);

/// The callback asked for it. The program runs on. The number is positive, unlike the failures: a
/// test of the sign takes it for a success.
inline constexpr std::int32_t ExternalProcessCancelled = 0x00E08005;

namespace Impl {
class ExternalProcessImplementation;
}

/// The caller's side of a wait: asked once for each poll interval that passes with the program still
/// running, `ShouldCancel` first, on the thread that called `Execute`. What these throw goes to the
/// caller of `Execute`; nothing leaks then.
class VRUTILS_API ExternalProcessCallback {
  public:
    ExternalProcessCallback() = default;
    /// There is nothing to copy.
    ExternalProcessCallback(ExternalProcessCallback const&) = default;
    /// There is nothing to copy.
    ExternalProcessCallback& operator=(ExternalProcessCallback const&) = default;
    virtual ~ExternalProcessCallback() = default;

    /// Called after each interval unless the wait was cancelled.
    virtual void OnPoll() = 0;

    /// True ends the wait at once, without `OnPoll`.
    virtual bool ShouldCancel() = 0;
};

/// Runs one other program with a command line made by hand, and tells how it ended.
///
/// The choice of constructor is the choice of how to wait: blocked, blocked with a callback, or not
/// at all. A program is never killed: after a time-out or a cancel it runs on unwatched. `Execute`
/// may be called again; it does not change the object.
///
/// **Assigned objects share one program's description**: what is set through one of them holds for
/// the other too. Copies cannot be constructed.
///
/// One `Execute` at a time for each object, and one thread at a time for the rest.
///
/// @code
/// ExternalProcess checker(L"checker", 5, L"PFC HTML");
/// checker.args() << L"C:\\Tools\\check.exe" << clip.str();
/// if (checker.Execute() != 0) ...
/// @endcode
class VRUTILS_API ExternalProcess {
  public:
    /// Adds arguments in a chain; see `args`. Refers to its process, which must outlive it.
    class VRUTILS_API cmdArg {
      public:
        /// `addArg` of the process.
        cmdArg& add(std::wstring const& argument);

        /// The same.
        cmdArg& operator<<(std::wstring const& argument);

      private:
        friend class ExternalProcess;
        explicit cmdArg(ExternalProcess& process) : m_process(process) {}

        ExternalProcess& m_process;
    };

    /// `Execute` blocks until the program has ended or the time has passed.
    /// @param name a short label of the program, for the log
    /// @param timeoutSeconds 0 and 0xFFFFFFFF stand for no limit; others are taken times 1000 in 32
    ///        bits, so that the largest wrap
    /// @param logModule the module name of the log lines; if empty, a time-out is all that is logged
    ExternalProcess(
        std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule);

    /// As the first; `Execute` asks the callback meanwhile. The limit counts poll intervals that
    /// passed in full, not the time spent in the callback, and is over when they exceed it: one
    /// second is over after three intervals of 500 ms. With an interval of 0 it is never over.
    /// @param callback borrowed, not null
    /// @param pollIntervalMs in milliseconds
    ExternalProcess(
        std::wstring const& name, std::uint32_t timeoutSeconds, std::wstring const& logModule,
        ExternalProcessCallback* callback, std::uint32_t pollIntervalMs);

    /// `Execute` does not wait: 0 means that the program was started.
    ExternalProcess(std::wstring const& name, std::wstring const& logModule);

    ExternalProcess(ExternalProcess const&) = delete;

    /// Lets go of this object's description and shares the other one's.
    ExternalProcess& operator=(ExternalProcess const&);

    ~ExternalProcess();

    /// Adds an argument, behind a blank unless the line is empty: cut of blanks and tabs at both ends,
    /// then quoted by `quoteArg`. An empty argument leaves the blank only. The first argument is the
    /// program.
    void addArg(std::wstring const& argument);

    /// Adds text exactly as it is, with no blank in front.
    void addRawArg(std::wstring const& text);

    /// The argument in double quotes, each one inside it doubled, if it holds one, an apostrophe, a
    /// blank, a tab or one of `& | < >`; otherwise as it is, an empty one too. Backslashes are left
    /// alone, also in front of the closing quote, so this is not what the usual argument parser
    /// undoes.
    static std::wstring quoteArg(std::wstring const& argument);

    /// The command line, to be written by hand.
    std::wstring& rawCommandLine();

    /// The command line as it stands.
    std::wstring const& commandLine() const;

    /// For `process.args() << L"first" << L"second"`.
    cmdArg args();

    /// The folder that the program starts in; empty for that of this process.
    void SetWorkingDirectory(std::wstring const& folder);

    /// Sets a variable of the program's environment. With the first one the program loses all that
    /// it would inherit, the system's variables included. Keys that differ in case are two.
    void SetEnv(std::wstring const& key, std::wstring const& value);

    /// Runs the program. The platform looks for it as for any command line, the folder of this
    /// program first.
    ///
    /// Under a module name the log receives `Calling external process "NAME"` at level 6 and the
    /// first 500 characters of `External process NAME command line - LINE` at level 7; then
    /// `Failed to start process "NAME". Error NUMBER` at level 3, or `Process "NAME" completed
    /// successfully` or `Process "NAME" failed with error code NUMBER` at level 6. `Process "NAME"
    /// timed out` at level 3 is logged in any case.
    /// @return 0, `ExternalProcessTimedOut`, `ExternalProcessFailed` or `ExternalProcessCancelled`
    std::int32_t Execute() const;

  private:
    std::shared_ptr<Impl::ExternalProcessImplementation> m_implementation;
};

} // namespace vrUtils::Process

#endif
