// What the tests run in place of the report program: it does what the XML report tells it to.
//
//     fail      ends with code 3
//     half      writes half a report, and then waits to be ended
//     anything  writes the arguments behind the two files as the report, each in brackets

#include "tests/support/LimitedLife.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::string contentOf(std::filesystem::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string word;
    stream >> word;
    return word;
}

void write(std::filesystem::path const& file, std::string const& text) {
    std::ofstream(file, std::ios::binary) << text;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    test::limitLife();
    if (count < 3)
        return 2;
    auto const order = contentOf(arguments[1]);
    if (order == "fail")
        return 3;
    if (order == "half") {
        write(arguments[2], "<html>half");
        Sleep(INFINITE);
    }
    std::string report = "<html>";
    for (int index = 3; index < count; ++index)
        report += "[" + std::filesystem::path(arguments[index]).u8string() + "]";
    write(arguments[2], report);
    return 0;
}
