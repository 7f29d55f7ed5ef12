#include "tools/vrtool/Answers.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/OwnedHandle.h"

#include <boost/algorithm/string.hpp>

#include <array>
#include <memory>
#include <system_error>
#include <thread>

namespace {

// An answer is a word; the rest of what comes without a line's end is not kept.
constexpr std::size_t longestLine = 1024;

// Byte by byte, so that nothing is taken that belongs to the next answer.
std::optional<std::string> readLine(HANDLE input) {
    std::string line;
    char byte = 0;
    DWORD count = 0;
    while (ReadFile(input, &byte, 1, &count, nullptr) && count == 1) {
        if (byte == '\n')
            return line;
        if (line.size() < longestLine)
            line += byte;
    }
    return line.empty() ? std::nullopt : std::optional(line);
}

// Shared with the thread that reads, which outlives a wait that the key has ended.
struct Reading {
    OwnedHandle done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    DWORD error = GetLastError();
    std::optional<std::string> line;
};

} // namespace

std::optional<std::string> nextAnswer(CancelKey const& key) {
    auto const reading = std::make_shared<Reading>();
    if (!reading->done)
        throw std::system_error(
            static_cast<int>(reading->error), std::system_category(), "cannot wait for an answer");
    std::thread reader([reading, input = GetStdHandle(STD_INPUT_HANDLE)] {
        reading->line = readLine(input);
        SetEvent(reading->done.get());
    });

    std::array<HANDLE, 2> const events{key.event(), reading->done.get()};
    if (WaitForMultipleObjects(2, events.data(), FALSE, INFINITE) != WAIT_OBJECT_0 + 1) {
        reader.detach();
        return {};
    }
    reader.join();
    if (reading->line)
        *reading->line = boost::to_lower_copy(boost::trim_copy(*reading->line));
    return reading->line;
}
