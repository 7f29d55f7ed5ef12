// A lock on a file taken and released; each candidate has a file of its own.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "vrUtils/Files.h"
#include "vrUtils/Process.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <boost/interprocess/sync/file_lock.hpp>

namespace {

// The calls that ours is made of.
BOOL raw(std::wstring const& path) {
    auto const file = CreateFileW(
        path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
        FILE_ATTRIBUTE_NORMAL, nullptr);
    wchar_t name[16];
    DWORD units = 16;
    GetComputerNameW(name, &units);
    auto const length = units * static_cast<DWORD>(sizeof(wchar_t));
    DWORD written = 0;
    WriteFile(file, name, length, &written, nullptr);
    OVERLAPPED fromStart{};
    LockFileEx(file, LOCKFILE_FAIL_IMMEDIATELY | LOCKFILE_EXCLUSIVE_LOCK, 0, length, 0, &fromStart);
    UnlockFile(file, 0, 0, length, 0);
    CloseHandle(file);
    return DeleteFileW(path.c_str());
}

// The peer locks a file that is there: making and removing it is the caller's part.
bool byBoost(std::wstring const& wide, std::string const& path) {
    std::ofstream(std::filesystem::path(wide)) << "computer";
    {
        boost::interprocess::file_lock lock(path.c_str());
        lock.lock();
        lock.unlock();
    }
    return std::filesystem::remove(wide);
}

} // namespace

void benchmarks::registerCandidates() {
    static vr::Path const path(fileNamed(L"locked"), vr::Path::eFile);
    candidate("lock", "ours", [] {
        vrUtils::Files::LockFile const lock(path);
        return 0;
    });

    static auto const rawPath = fileNamed(L"raw.lck");
    candidate("lock", "limit", [] { return raw(rawPath); });

    static auto const boostPath = fileNamed(L"boost.lck");
    static auto const boostNarrow = std::filesystem::path(boostPath).string();
    candidate("lock", "boost", [] { return byBoost(boostPath, boostNarrow); });
}
