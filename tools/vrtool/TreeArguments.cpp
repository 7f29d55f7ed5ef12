#include "tools/vrtool/TreeArguments.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/SystemText.h"

#include <stdexcept>

void TreeArguments::declare(CLI::App& arguments) {
    m_key = arguments.add_option("KEY")->required();
    m_key->description("The tree's root, below HKCU or HKLM, or their long names");
    m_file = arguments.add_option("FILE")->required()->description("The dump file");
    arguments.final_callback([this] {
        try {
            tree();
        } catch (std::invalid_argument const& wrong) {
            throw CLI::ValidationError("KEY", m_key->as<std::string>() + ' ' + wrong.what());
        }
    });
}

TreeName TreeArguments::tree() const { return TreeName(CommandLine::textOf(*m_key)); }

std::wstring TreeArguments::file() const { return fullPath(CommandLine::textOf(*m_file)); }
