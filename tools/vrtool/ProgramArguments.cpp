#include "tools/vrtool/ProgramArguments.h"

#include "tools/vrtool/CommandLine.h"

void ProgramArguments::declare(CLI::App& arguments) {
    m_words = arguments.add_option("PROGRAM")->required()->expected(1, -1)->take_all();
    m_words->description("The program and its arguments, behind --")->allow_extra_args();
}

std::wstring ProgramArguments::program() const { return CommandLine::textOf(*m_words); }

void ProgramArguments::handTo(vrUtils::Process::ExternalProcess& process) const {
    for (auto const& word : CommandLine::valuesOf(*m_words))
        process.addArg(word);
}
