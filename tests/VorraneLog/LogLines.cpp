#include "tests/VorraneLog/LogLines.h"

#include <stdexcept>

namespace test {

namespace {

std::string takeUpTo(std::string const& separator, std::string const& bytes, std::size_t& start) {
    auto const end = bytes.find(separator, start);
    if (end == std::string::npos)
        throw std::runtime_error("torn line of the log: " + bytes.substr(start, 200));
    auto taken = bytes.substr(start, end - start);
    start = end + separator.size();
    return taken;
}

LogFileLine parsed(std::string const& line) {
    std::size_t start = 0;
    LogFileLine columns;
    columns.time = takeUpTo("\t", line, start);
    columns.level = takeUpTo("\t", line, start);
    columns.module = takeUpTo("\t", line, start);
    columns.process = takeUpTo("\t", line, start);
    columns.thread = takeUpTo("\t", line, start);
    columns.text = line.substr(start);
    return columns;
}

} // namespace

std::vector<LogFileLine> logLines(std::string const& bytes) {
    std::vector<LogFileLine> lines;
    for (std::size_t start = 0; start < bytes.size();)
        lines.push_back(parsed(takeUpTo("\r\n", bytes, start)));
    return lines;
}

std::vector<std::string> logTexts(std::string const& bytes) {
    std::vector<std::string> texts;
    for (auto const& line : logLines(bytes))
        texts.push_back(line.text);
    return texts;
}

} // namespace test
