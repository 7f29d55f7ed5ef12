#include "tests/process/FakeProgram.h"

namespace test {

namespace {

std::optional<std::wstring> environmentAt(void const* block) {
    auto const* const text = static_cast<wchar_t const*>(block);
    if (!text)
        return std::nullopt;
    std::size_t end = 0;
    while (text[end] || text[end + 1])
        ++end;
    return std::wstring(text, end + 2);
}

} // namespace

FakeProgram::FakeProgram()
    : m_start(
          "CreateProcessW",
          [this](
              wchar_t const* application, wchar_t* line, SECURITY_ATTRIBUTES* processAttributes,
              SECURITY_ATTRIBUTES* threadAttributes, BOOL inheritsHandles, DWORD flags,
              void* environment, wchar_t const* folder, STARTUPINFOW* startup,
              PROCESS_INFORMATION* process) {
              StartCall call;
              call.application = application;
              call.hasAttributes = processAttributes || threadAttributes;
              call.inheritsHandles = inheritsHandles;
              call.flags = flags;
              call.environment = environmentAt(environment);
              if (folder)
                  call.folder = folder;
              call.startup = *startup;
              return start(call, line, process);
          }),
      m_wait(
          "WaitForSingleObject",
          [this](HANDLE handle, DWORD milliseconds) { return wait(handle, milliseconds); }),
      m_exitCode(
          "GetExitCodeProcess",
          [this](HANDLE, DWORD* code) {
              *code = exitCode;
              return TRUE;
          }),
      m_close("CloseHandle", [this](HANDLE handle) {
          m_closed.push_back(handle);
          return m_close.original()(handle);
      }) {}

BOOL FakeProgram::start(StartCall call, wchar_t* line, PROCESS_INFORMATION* process) {
    call.line = line;
    call.lineAddress = line;
    call.process = *process;
    m_starts.push_back(call);
    // The platform may write to the line that it is given.
    *line = L'#';
    process->hProcess = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    process->hThread = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    m_process = *process;
    return TRUE;
}

DWORD FakeProgram::wait(HANDLE handle, DWORD milliseconds) {
    // The C++ runtime of the library waits too, for objects of its own.
    if (handle != m_process.hProcess)
        return m_wait.original()(handle, milliseconds);
    m_waits.push_back(milliseconds);
    if (waitAnswers.empty())
        return WAIT_OBJECT_0;
    auto const answer = waitAnswers.front();
    waitAnswers.pop_front();
    return answer;
}

} // namespace test
