#ifndef TOOLS_VRTOOL_TRANSFERSUMMARY_H
#define TOOLS_VRTOOL_TRANSFERSUMMARY_H

#include "tools/vrtool/FileTransfer.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// What became of all files of a transfer.
class TransferSummary {
  public:
    // Counts the outcome in the process's statistics too.
    void add(std::wstring const& place, TransferOutcome const& outcome);

    // Whether every file is there with all that belongs to it.
    bool allWell() const { return m_troubled == 0; }

    // A row for each file.
    std::string table(std::optional<std::size_t> width) const;

    // How many files, how much, and how fast.
    std::string line(std::chrono::milliseconds elapsed) const;

  private:
    struct Row {
        std::wstring place;
        TransferOutcome outcome;
    };

    std::vector<Row> m_rows;
    std::size_t m_troubled = 0;
};

#endif
