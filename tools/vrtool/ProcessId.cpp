#include "tools/vrtool/ProcessId.h"

#include <limits>

void declareProcessId(CLI::App& arguments, std::uint32_t& id) {
    arguments.add_option("PID", id, "The process id, as `vrtool run` tells it")
        ->required()
        ->check(CLI::Range(1u, std::numeric_limits<std::uint32_t>::max()).description(""))
        ->type_name("");
}
