#include "VorraneLog/LogFile.h"

#include "VorraneLog/LogLine.h"
#include "foundation/Platform.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

namespace VorraneLog {

namespace {

using RotatingFile = spdlog::sinks::rotating_file_sink_st;

// Processes that can log under one name at the same time.
constexpr int mostProcesses = 99;
constexpr char timeAndLine[] = "%Y-%m-%d %H:%M:%S.%e\t%v";
constexpr wchar_t separators[] = L"\\/";
constexpr char warning = 4;

// The form of a full path that has no limit of 260 characters. Names of devices stay.
std::wstring withoutLimit(std::wstring const& path) {
    auto const startsWith = [&path](std::wstring_view start) {
        return path.compare(0, start.size(), start) == 0;
    };
    if (path.empty() || startsWith(L"\\\\?\\") || startsWith(L"\\\\.\\"))
        return path;
    return startsWith(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}

// Makes the folder and those above it. True as well if the name belongs to a file: opening the log
// then tells.
bool ensureFolder(std::wstring const& folder) {
    if (CreateDirectoryW(folder.c_str(), nullptr))
        return true;
    auto const error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS)
        return true;
    auto const slash = folder.find_last_of(separators);
    if (error != ERROR_PATH_NOT_FOUND || slash == std::wstring::npos)
        return GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES;
    return ensureFolder(folder.substr(0, slash)) && CreateDirectoryW(folder.c_str(), nullptr);
}

// "name.log", "name-2.log", "name-3.log". Not "name.2.log", which is an old file of the first.
std::wstring numbered(std::wstring const& name, int number) {
    if (number == 1)
        return name;
    auto const [stem, extension] = spdlog::details::file_helper::split_by_extension(name);
    return stem + L'-' + std::to_wstring(number) + extension;
}

std::vector<std::wstring> withOldFiles(std::wstring const& name, std::size_t oldFiles) {
    std::vector<std::wstring> names;
    for (std::size_t age = 0; age <= oldFiles; ++age)
        names.push_back(RotatingFile::calc_filename(name, age));
    return names;
}

// The size of the file, which is made if it is missing. This tells in one call whether it can be
// written, where the sink would try and wait several times.
bool probe(std::wstring const& path, std::size_t& size) {
    auto const file = ownFile(CreateFileW(
        path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER bytes;
    if (!file || !GetFileSizeEx(file.get(), &bytes))
        return false;
    size = static_cast<std::size_t>(bytes.QuadPart);
    return true;
}

} // namespace

// A rotating file that is never truncated. Where an old file cannot be renamed, since a viewer has
// it open, the library's own would throw away all that the current one holds.
class LogFile::Sink {
  public:
    Sink(std::wstring const& path, std::size_t bytes, std::size_t oldFiles)
        : file_(path, bytes, oldFiles, false, handlers()) {
        file_.set_formatter(std::make_unique<spdlog::pattern_formatter>(
            timeAndLine, spdlog::pattern_time_type::local, "\r\n"));
        isOpen_ = true;
    }

    void write(std::string_view line) {
        if (line.size() > shortLine && !hasMemoryFor(line))
            line = line.substr(0, wholeCharactersUpTo(line, shortLine));
        file_.log({{}, spdlog::level::info, {line.data(), line.size()}});
        file_.flush();
    }

    bool isRotationBlocked() const noexcept { return isRotationBlocked_; }

  private:
    // Lines of this size need nothing from the heap.
    static constexpr std::size_t shortLine = 200;

    // The library copies a longer line, and raises bad_alloc if it cannot; where the heap is exhausted
    // this runtime may end the process at that. So such a line is cut beforehand.
    static bool hasMemoryFor(std::string_view line) noexcept {
        constexpr std::size_t copiesWhileGrowing = 3;
        auto* const memory = std::malloc(copiesWhileGrowing * line.size());
        std::free(memory);
        return memory != nullptr;
    }

    // The greatest size up to this one that tears no character of the line.
    static std::size_t wholeCharactersUpTo(std::string_view line, std::size_t size) noexcept {
        while ((static_cast<unsigned char>(line[size]) & 0xC0U) == 0x80)
            --size;
        return size;
    }

    // After its first opening the file is only opened to start afresh, and then must be gone.
    spdlog::file_event_handlers handlers() {
        spdlog::file_event_handlers handlers;
        handlers.before_open = [this](std::wstring const& path) {
            if (isOpen_ && spdlog::details::os::path_exists(path)) {
                isRotationBlocked_ = true;
                throw spdlog::spdlog_ex("an old log file cannot be renamed");
            }
        };
        return handlers;
    }

    bool isOpen_ = false;
    bool isRotationBlocked_ = false;
    RotatingFile file_;
};

LogFile::LogFile(std::wstring const& path, Limits const& limits) : limits_(limits) {
    auto const full = withoutLimit(path);
    auto const slash = full.find_last_of(separators);
    if (slash == std::wstring::npos)
        return;
    folder_ = full.substr(0, slash);
    name_ = full.substr(slash + 1);
}

LogFile::~LogFile() = default;

void LogFile::write(std::string_view line) noexcept {
    bool const wasOpen = sink_ != nullptr;
    if (wasOpen && putWithCount(line))
        return;
    // A sink that has failed may have lost its file, so the second attempt has a new one.
    if ((wasOpen || mayOpen()) && open() && putWithCount(line))
        return;
    ++dropped_;
}

void LogFile::abandon() noexcept { static_cast<void>(sink_.release()); }

bool LogFile::putWithCount(std::string_view line) noexcept {
    if (dropped_ > 0) {
        LogText notice;
        appendColumns(notice, warning, L"VorraneLog");
        notice.appendAscii("Lines dropped before this one: ");
        notice.appendNumber(static_cast<long long>(dropped_));
        if (!put(notice.view()))
            return false;
        dropped_ = 0;
    }
    return put(line);
}

bool LogFile::put(std::string_view line) noexcept {
    try {
        sink_->write(line);
        return true;
    } catch (std::bad_alloc const&) {
        // The file is well, there is only no room for this line: no reason to pause.
    } catch (std::exception const&) {
        isRotationBlocked_ = sink_->isRotationBlocked();
        pause();
    }
    sink_.reset();
    return false;
}

void LogFile::pause() noexcept { nextAttempt_ = GetTickCount64() + limits_.pause; }

bool LogFile::mayOpen() const noexcept { return GetTickCount64() >= nextAttempt_; }

bool LogFile::open() noexcept {
    try {
        if (openOneOfAll())
            return true;
    } catch (std::exception const&) {
        // No memory, or a file that went away between two calls: as good as not opened.
    }
    pause();
    return false;
}

bool LogFile::openOneOfAll() {
    if (name_.empty() || !ensureFolder(folder_))
        return false;
    if (reservation_.isHeld() && openSink(reservedPath_))
        return true;
    for (int number = 1; number <= mostProcesses; ++number) {
        auto const name = numbered(name_, number);
        FileReservation reservation(folder_, withOldFiles(name, limits_.oldFiles));
        auto path = folder_ + L'\\' + name;
        if (reservation.isHeld() && openSink(path)) {
            reservation_ = std::move(reservation);
            reservedPath_ = std::move(path);
            return true;
        }
    }
    return false;
}

bool LogFile::openSink(std::wstring const& path) {
    std::size_t size = 0;
    if (!probe(path, size))
        return false;
    auto const bytes = isRotationBlocked_ ? size + limits_.bytes : limits_.bytes;
    sink_ = std::make_unique<Sink>(path, bytes, limits_.oldFiles);
    isRotationBlocked_ = false;
    return true;
}

} // namespace VorraneLog
