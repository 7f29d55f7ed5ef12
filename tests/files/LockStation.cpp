// What stands for one of two computers in two_computers.py: does on a lock file what a line of its
// input says, and answers with a line.

#include "tests/files/LockFiles.h"
#include "tests/support/ChildAction.h"
#include "tests/support/OwnedHandle.h"
#include "tests/support/WideText.h"

#include <functional>
#include <iostream>
#include <map>
#include <optional>

namespace {

class Station {
  public:
    void run() {
        std::map<std::string, std::function<std::string()>> const commands{
            {"take", [this] { return take(); }},
            {"take without a name", [this] { return takeWithoutName(); }},
            {"release", [this] { return release(); }},
            {"pause and release", [this] { return pauseAndRelease(); }},
            {"open", [this] { return open(); }},
            {"lock", [this] { return lockRange(); }},
            {"close", [this] { return close(); }},
        };
        say("ready");
        std::string line;
        while (std::getline(std::cin, line)) {
            auto const command = commands.find(line);
            say(command == commands.end() ? turnTo(line) : command->second());
        }
    }

  private:
    static void say(std::string const& text) { std::cout << text << std::endl; }

    static std::string answer(char const* success, bool succeeded) {
        DWORD const error = GetLastError();
        return succeeded ? success : "error " + std::to_string(error);
    }

    // What is no command is the path of the file to protect from now on.
    std::string turnTo(std::string const& path) {
        m_lock.reset();
        m_file.reset();
        m_path = test::fromUtf8(path);
        return "turned";
    }

    std::string take() {
        try {
            m_lock.emplace(vr::Path::file(m_path));
            return "taken";
        } catch (vrUtils::Files::LockFileException const&) {
            return "refused";
        }
    }

    std::string takeWithoutName() {
        ComputerNamed const nameless({});
        return take();
    }

    std::string release() {
        m_lock.reset();
        return "released";
    }

    // Waits between the close and the deletion for a further line.
    std::string pauseAndRelease() {
        BOOL deleted = FALSE;
        test::ImportHook const hook("DeleteFileW", [&](LPCWSTR name) -> BOOL {
            say("closed");
            std::string line;
            std::getline(std::cin, line);
            return deleted = DeleteFileW(name);
        });
        m_lock.reset();
        return deleted ? "deleted" : "not deleted";
    }

    // The two ways in which a lock file keeps others out, each by itself.
    std::string open() {
        m_file.reset(CreateFileW(
            (m_path + L".lck").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
            FILE_ATTRIBUTE_NORMAL, nullptr));
        return answer("opened", m_file.get() != INVALID_HANDLE_VALUE);
    }

    std::string lockRange() {
        OVERLAPPED fromStart{};
        DWORD const flags = LOCKFILE_FAIL_IMMEDIATELY | LOCKFILE_EXCLUSIVE_LOCK;
        return answer("locked", LockFileEx(m_file.get(), flags, 0, 2, 0, &fromStart) != FALSE);
    }

    std::string close() {
        m_file.reset();
        return "closed";
    }

    std::wstring m_path;
    std::optional<vrUtils::Files::LockFile> m_lock;
    test::OwnedHandle m_file;
};

test::ChildAction const beStation(L"be a lock station", [](auto const&) {
    Station().run();
    return 0;
});

} // namespace
