#ifndef STORAGE_PATHALIASTABLE_H
#define STORAGE_PATHALIASTABLE_H

#include "foundation/Mutex.h"

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace vrUtils::Storage {

// What a process has learned about other names of machines: pairs of the leading `\\host` of a path
// as it was met and the one that worked, both in lower case, in the order they were learned.
//
// The lock guards the pairs and is never held during a look-up.
class PathAliasTable {
  public:
    // The stream takes a line for each rewritten path; null for none.
    explicit PathAliasTable(std::FILE* traceStream = nullptr) : m_traceStream(traceStream) {}

    // Rewrites a path of the system's code page: by the first pair whose key it begins with, by the
    // first pair whose key's host its own host begins with, or by asking the name service for its
    // host. What is rewritten is in lower case, and never longer than before.
    // Returns whether the path was rewritten.
    bool substitute(std::string& path);

    void add(std::string key, std::string value);

    // Whether a pair has been added.
    bool changed() const;

  private:
    struct Alias {
        std::string key;
        std::string value;
    };

    std::optional<std::string> byKnownPrefix(std::string const& lowered) const;
    std::optional<std::string> byPartialHost(std::string const& lowered) const;
    std::optional<std::string> byTrimmedHost(std::string const& lowered);
    void trace(char const* format, std::string const& asMet, std::string const& rewritten) const;

    mutable Mutex m_lock;
    std::vector<Alias> m_aliases;
    std::FILE* m_traceStream;
    bool m_changed = false;
};

// The process's own table, made at its first use.
PathAliasTable& pathAliasTable();

} // namespace vrUtils::Storage

#endif
