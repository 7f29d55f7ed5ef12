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
        : m_file(path, bytes, oldFiles, false, handlers()) {
        m_file.set_formatter(std::make_unique<spdlog::pattern_formatter>(
            timeAndLine, spdlog::pattern_time_type::local, "\r\n"));
        m_isOpen = true;
    }

    void write(std::string_view line) {
        if (line.size() > shortLine && !hasMemoryFor(line))
            line = line.substr(0, wholeCharactersUpTo(line, shortLine));
        m_file.log({{}, spdlog::level::info, {line.data(), line.size()}});
        m_file.flush();
    }

    bool isRotationBlocked() const noexcept { return m_isRotationBlocked; }

  private:
    // Lines of this size need nothing from the heap.
    static constexpr std::size_t shortLine = 200;

    // The library copies a longer line, and raises bad_alloc if it cannot; where the heap is
    // exhausted this runtime may end the process at that. So such a line is cut beforehand.
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
            if (m_isOpen && spdlog::details::os::path_exists(path)) {
                m_isRotationBlocked = true;
                throw spdlog::spdlog_ex("an old log file cannot be renamed");
            }
        };
        return handlers;
    }

    bool m_isOpen = false;
    bool m_isRotationBlocked = false;
    RotatingFile m_file;
};

LogFile::LogFile(std::wstring const& path, Limits const& limits) : m_limits(limits) {
    auto const full = withoutLimit(path);
    auto const slash = full.find_last_of(separators);
    if (slash == std::wstring::npos)
        return;
    m_folder = full.substr(0, slash);
    m_name = full.substr(slash + 1);
}

LogFile::~LogFile() = default;

void LogFile::write(std::string_view line) noexcept {
    bool const wasOpen = m_sink != nullptr;
    if (wasOpen && putWithCount(line))
        return;
    // A sink that has failed may have lost its file, so the second attempt has a new one.
    if ((wasOpen || mayOpen()) && open() && putWithCount(line))
        return;
    ++m_dropped;
}

void LogFile::abandon() noexcept { static_cast<void>(m_sink.release()); }

bool LogFile::putWithCount(std::string_view line) noexcept {
    if (m_dropped > 0) {
        LogText notice;
        appendColumns(notice, warning, L"VorraneLog");
        notice.appendAscii("Lines dropped before this one: ");
        notice.appendNumber(static_cast<long long>(m_dropped));
        if (!put(notice.view()))
            return false;
        m_dropped = 0;
    }
    return put(line);
}

bool LogFile::put(std::string_view line) noexcept {
    try {
        m_sink->write(line);
        return true;
    } catch (std::bad_alloc const&) {
        // The file is well, there is only no room for this line: no reason to pause.
    } catch (std::exception const&) {
        m_isRotationBlocked = m_sink->isRotationBlocked();
        pause();
    }
    m_sink.reset();
    return false;
}

void LogFile::pause() noexcept { m_nextAttempt = GetTickCount64() + m_limits.pause; }

bool LogFile::mayOpen() const noexcept { return GetTickCount64() >= m_nextAttempt; }

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
    if (m_name.empty() || !ensureFolder(m_folder))
        return false;
    if (m_reservation.isHeld() && openSink(m_reservedPath))
        return true;
    for (int number = 1; number <= mostProcesses; ++number) {
        auto const name = numbered(m_name, number);
        FileReservation reservation(m_folder, withOldFiles(name, m_limits.oldFiles));
        auto path = m_folder + L'\\' + name;
        if (reservation.isHeld() && openSink(path)) {
            m_reservation = std::move(reservation);
            m_reservedPath = std::move(path);
            return true;
        }
    }
    return false;
}

bool LogFile::openSink(std::wstring const& path) {
    std::size_t size = 0;
    if (!probe(path, size))
        return false;
    auto const bytes = m_isRotationBlocked ? size + m_limits.bytes : m_limits.bytes;
    m_sink = std::make_unique<Sink>(path, bytes, m_limits.oldFiles);
    m_isRotationBlocked = false;
    return true;
}

} // namespace VorraneLog
