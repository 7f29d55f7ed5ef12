#ifndef VRUTILS_VRSTATCOLLECTOR_H
#define VRUTILS_VRSTATCOLLECTOR_H

/// @file
/// What a process has counted.

#include "vrUtils/vrUtilsApi.h"

#include <cstdint>
#include <memory>
#include <string>

/// The one table of a process with named 64-bit counts, by number. Any thread adds; a reporting
/// side fetches them one by one or all as JSON. There is no history.
///
/// Five stats are there from the start, all 0:
///
/// | number  | name                |
/// |---------|---------------------|
/// | 0x10000 | "BytesRead"         |
/// | 0x10001 | "BytesWritten"      |
/// | 0x10002 | "FramesTransferred" |
/// | 0x10003 | "Transcoded"        |
/// | 0x10004 | "TransferStatus"    |
///
/// Every other number becomes a stat, with value 0 and no name, the first time it is used, also by
/// `GetStat`. Nothing fails but for want of memory; once a stat is there, adding needs none.
///
/// All operations may be called from any thread.
///
/// @code
/// auto& stats = vrStatCollector::Singleton();
/// stats.SetStatName(7, L"Retries");
/// stats.AddStat(7, 1u);
/// @endcode
class VRUTILS_API vrStatCollector {
  public:
    /// The table, made at the first call and kept to the end of the process.
    static vrStatCollector& Singleton();

    vrStatCollector(vrStatCollector const&) = delete;
    vrStatCollector& operator=(vrStatCollector const&) = delete;

    /// Names a stat, keeping its value.
    /// @param name not null
    void SetStatName(int id, std::wstring const* name);

    /// As above; not null.
    void SetStatName(int id, wchar_t const* name) {
        std::wstring const text(name);
        SetStatName(id, &text);
    }

    /// Adds to a stat. The sum wraps at 64 bits.
    void AddStat(int id, unsigned long amount);
    /// As above.
    void AddStat(int id, std::uint64_t amount);

    /// As above, so that plain numbers may be given.
    void AddStat(int id, unsigned int amount) { AddStat(id, static_cast<unsigned long>(amount)); }

    /// Replaces a stat's value.
    void SetStat(int id, unsigned long value);

    /// A stat's value.
    std::uint64_t GetStat(int id);

    /// All stats as an indented JSON object, in the order of their names. Stats of one name, and so
    /// all stats with none, are one member, with the value of the highest number. It is the state
    /// of one moment: who adds meanwhile, waits.
    /// @throws std::bad_alloc, or JsonCpp's Json::RuntimeError, if there is no memory for it
    std::wstring asJson();

  private:
    vrStatCollector();
    virtual ~vrStatCollector();

    class Table;

    std::unique_ptr<Table> m_table;
};

#endif
