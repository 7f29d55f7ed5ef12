#ifndef TESTS_VORRANELOG_LOGLINES_H
#define TESTS_VORRANELOG_LOGLINES_H

#include <string>
#include <vector>

namespace test {

// The columns of one line of the log.
struct LogFileLine {
    std::string time;
    std::string level;
    std::string module;
    std::string process;
    std::string thread;
    std::string text;
};

// The lines of a log file; throws std::runtime_error at one that is not whole.
std::vector<LogFileLine> logLines(std::string const& bytes);

// The texts alone.
std::vector<std::string> logTexts(std::string const& bytes);

} // namespace test

#endif
