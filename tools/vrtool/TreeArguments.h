#ifndef TOOLS_VRTOOL_TREEARGUMENTS_H
#define TOOLS_VRTOOL_TREEARGUMENTS_H

#include "tools/vrtool/TreeName.h"

#include <CLI/CLI.hpp>

#include <string>

// The arguments that dump and restore have in common: the tree and its file.
class TreeArguments {
  public:
    // A key that is none is a wrong argument.
    void declare(CLI::App& arguments);

    TreeName tree() const;

    // The full path of the file.
    std::wstring file() const;

  private:
    CLI::Option* m_key = nullptr;
    CLI::Option* m_file = nullptr;
};

#endif
