#include "tools/vrtool/TransferSummary.h"

#include "tools/vrtool/ElapsedLine.h"
#include "tools/vrtool/TextTable.h"
#include "tools/vrtool/TransferProgress.h"
#include "tools/vrtool/TransferStatistics.h"
#include "vrUtils/vrStatCollector.h"

#include <algorithm>
#include <array>

namespace {

struct Kind {
    wchar_t const* inRow;
    char const* inLine;
    wchar_t const* statistic;
};

// In the order of the results.
constexpr std::array<Kind, 5> kinds = {{
    {L"transferred", " transferred", L"FilesTransferred"},
    {L"replaced", " replaced", L"FilesReplaced"},
    {L"already there", " already there", L"FilesAlreadyThere"},
    {L"failed", " failed", L"FilesFailed"},
    {L"cancelled", " cancelled", L"FilesCancelled"},
}};

std::wstring numberCell(std::optional<std::uint64_t> const& number) {
    return number ? std::to_wstring(*number) : L"-";
}

std::wstring pathText(vr::Path const& path) { return path.components().wholePath(); }

// A format that cannot be read is no failure of the transfer.
std::wstring remark(TransferOutcome const& outcome) {
    return outcome.failure.empty() ? outcome.formatFailure : outcome.failure;
}

} // namespace

void TransferSummary::add(std::wstring const& place, TransferOutcome const& outcome) {
    auto& stats = vrStatCollector::Singleton();
    auto const number = firstOutcomeStat + outcome.result;
    stats.SetStatName(number, kinds[outcome.result].statistic);
    stats.AddStat(number, 1u);
    auto const isThere =
        outcome.result != TransferOutcome::failed && outcome.result != TransferOutcome::cancelled;
    if (!isThere || !outcome.failure.empty())
        ++m_troubled;
    m_rows.push_back({place, outcome});
}

std::string TransferSummary::table(std::optional<std::size_t> width) const {
    using Align = TextTable::Align;
    using Narrow = TextTable::Narrow;
    // What no file has takes no room.
    auto const any = [this](auto const& textOfRow) {
        return std::any_of(m_rows.begin(), m_rows.end(), [&](Row const& row) {
            return !textOfRow(row.outcome).empty();
        });
    };
    auto const reportOf = [](TransferOutcome const& outcome) { return pathText(outcome.report); };
    auto const hasReports = any(reportOf);
    auto const hasRemarks = any(remark);

    std::vector<TextTable::Column> columns = {
        {L"FILE", Align::left, Narrow::cut},
        {L"BYTES", Align::right},
        {L"HZ", Align::right},
        {L"BITS", Align::right},
        {L"RESULT"},
        {L"INDEX", Align::left, Narrow::ownLine},
    };
    if (hasReports)
        columns.push_back({L"REPORT", Align::left, Narrow::ownLine});
    if (hasRemarks)
        columns.push_back({L"REMARK", Align::left, Narrow::ownLine});

    TextTable table(std::move(columns));
    for (auto const& [place, outcome] : m_rows) {
        auto const& format = outcome.format;
        std::vector<std::wstring> cells = {
            place,
            numberCell(outcome.size),
            format ? std::to_wstring(format->samplesPerSecond) : L"-",
            format ? std::to_wstring(format->bitsPerSample) : L"-",
            kinds[outcome.result].inRow,
            pathText(outcome.index)};
        if (hasReports)
            cells.push_back(reportOf(outcome));
        if (hasRemarks)
            cells.push_back(remark(outcome));
        table.addRow(std::move(cells));
    }
    return table.text(width);
}

std::string TransferSummary::line(std::chrono::milliseconds elapsed) const {
    auto text = std::to_string(m_rows.size()) + (m_rows.size() == 1 ? " file:" : " files:");
    auto const* separator = "";
    for (std::size_t result = 0; result < kinds.size(); ++result) {
        auto const count = std::count_if(m_rows.begin(), m_rows.end(), [&](Row const& row) {
            return static_cast<std::size_t>(row.outcome.result) == result;
        });
        if (count == 0)
            continue;
        text += separator + std::string(" ") + std::to_string(count) + kinds[result].inLine;
        separator = ",";
    }
    auto const bytes = vrStatCollector::Singleton().GetStat(bytesWrittenStat);
    auto const milliseconds =
        static_cast<std::uint64_t>(std::max<std::int64_t>(1, elapsed.count()));
    return text + "; " + bytesText(bytes) + " in " +
           clockText(std::chrono::duration_cast<std::chrono::seconds>(elapsed)) + ", " +
           bytesText(static_cast<std::uint64_t>(
               static_cast<double>(bytes) * 1000 / static_cast<double>(milliseconds))) +
           "/s\n";
}
