#ifndef TOOLS_VRTOOL_NAMESCOMMAND_H
#define TOOLS_VRTOOL_NAMESCOMMAND_H

#include "tools/vrtool/Command.h"
#include "vrUtils/ServerRecords.h"

#include <cstdint>

// `vrtool names`: what the message files of a transfer are called.
class NamesCommand : public Command {
  public:
    NamesCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;
    TransferParams transfer() const;

    CLI::Option* m_host = nullptr;
    CLI::Option* m_folder = nullptr;
    CLI::Option* m_root = nullptr;
    CLI::Option* m_metadataFolder = nullptr;
    CLI::Option* m_fileName = nullptr;
    CLI::Option* m_files = nullptr;
    CLI::Option* m_sourceName = nullptr;
    CLI::Option* m_prefix = nullptr;
    CLI::Option* m_extension = nullptr;
    std::uint32_t m_type = 0;
    bool m_json = false;
};

#endif
