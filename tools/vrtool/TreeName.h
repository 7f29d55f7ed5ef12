#ifndef TOOLS_VRTOOL_TREENAME_H
#define TOOLS_VRTOOL_TREENAME_H

#include "vrUtils/Registry/RegDumper.h"

#include <string>
#include <string_view>

// The key that a dump is made of or restored into, as it was typed: "HKCU\Software\Vorrane".
//
// In a dump file a tree's keys begin with 18 characters for the hive, which the library cuts off
// unseen. The machine's hive has a longer name and goes by one that fits, "HKEY_LOCALMACHINE\": the
// platform's registry editor refuses it, rather than to import the keys into a wrong hive.
class TreeName {
  public:
    // Takes "HKCU", "HKLM" and their long names, in any case. Backslashes at either end of
    // the key do not count.
    // @throws std::invalid_argument another hive, or no key below it; the text says which
    explicit TreeName(std::wstring_view text);

    HKEY hive() const { return m_hive; }
    bool isMachines() const;

    // The key below its hive, with no backslash at either end.
    std::wstring const& key() const { return m_key; }

    // The tree's root as it stands in a dump file.
    std::wstring inFile() const;

    // The tree's root by its full name.
    std::wstring text() const;

  private:
    HKEY m_hive;
    std::wstring m_key;
};

#endif
