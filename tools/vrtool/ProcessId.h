#ifndef TOOLS_VRTOOL_PROCESSID_H
#define TOOLS_VRTOOL_PROCESSID_H

#include <CLI/CLI.hpp>

#include <cstdint>

// The argument PID of a subcommand.
// @param id receives it; must outlive the arguments
void declareProcessId(CLI::App& arguments, std::uint32_t& id);

#endif
