#include "tests/config/DumpedTree.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/WideText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test {

namespace {

std::string replaced(std::string text, std::string const& from, std::string const& to) {
    for (auto found = text.find(from); found != std::string::npos;
         found = text.find(from, found + to.size()))
        text.replace(found, from.size(), to);
    return text;
}

} // namespace

void PrintTo(RegistryValue const& value, std::ostream* stream) {
    *stream << "type " << value.type << " of bytes " << testing::PrintToString(value.data);
}

std::string sampleFile(std::string const& name) {
    std::ifstream file(
        utf8(besideTestProgram(L"data\\registry\\")) + name, std::ios::in | std::ios::binary);
    if (!file)
        throw std::runtime_error("there is no sample file " + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string DumpedTree::dumpedBehindHeader() const {
    auto const header = onDisk("Windows Registry Editor Version 5.00\n[ROOT\\]\n");
    auto const bytes = dumped();
    return bytes.compare(0, header.size(), header) == 0 ? bytes.substr(header.size())
                                                        : "without the header: " + bytes;
}

std::int32_t DumpedTree::restoreLines(std::string const& lines) const {
    writeLines("Windows Registry Editor Version 5.00\n[ROOT\\]\n" + lines);
    return restore();
}

void DumpedTree::wipe() const {
    if (RegDeleteTreeW(key.hive(), key.path().c_str()) != ERROR_SUCCESS)
        throw std::runtime_error("the tree cannot be wiped");
    key.makeKey({});
}

std::string DumpedTree::withRoot(std::string const& bytes) const {
    return replaced(bytes, sampleRoot, narrowRoot());
}

std::string DumpedTree::onDisk(std::string const& lines) const {
    return replaced(replaced(lines, "\n", "\r\r\n"), "ROOT", narrowRoot());
}

DWORD DumpedTree::count(DWORD Counts::*member) const {
    HKEY root = nullptr;
    if (RegOpenKeyExW(key.hive(), key.path().c_str(), 0, KEY_READ, &root) != ERROR_SUCCESS)
        throw std::runtime_error("the tree does not open");
    Counts counts;
    RegQueryInfoKeyW(
        root, nullptr, nullptr, nullptr, &counts.subkeys, nullptr, nullptr, &counts.values, nullptr,
        nullptr, nullptr, nullptr);
    RegCloseKey(root);
    return counts.*member;
}

std::string DumpedTree::narrowRoot() const { return utf8(root()); }

} // namespace test
