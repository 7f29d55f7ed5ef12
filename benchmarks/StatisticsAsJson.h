#ifndef BENCHMARKS_STATISTICSASJSON_H
#define BENCHMARKS_STATISTICSASJSON_H

#include "benchmarks/Candidate.h"

#include "vrUtils/vrStatCollector.h"

#include <json/json.h>

#include <string>
#include <utility>
#include <vector>

namespace benchmarks {

// The collector's JSON beside JsonCpp alone, which builds and writes the same object.
// @param count 5 or more; from then on the collector has that many
inline void statisticsAsJson(char const* row, int count) {
    auto& stats = vrStatCollector::Singleton();
    std::vector<std::pair<std::string, Json::Value::UInt64>> same{
        {"BytesRead", 0},
        {"BytesWritten", 0},
        {"FramesTransferred", 0},
        {"Transcoded", 0},
        {"TransferStatus", 0}};
    for (int number = 5; number < count; ++number) {
        auto const name = L"FramesOfTransfer" + std::to_wstring(number);
        stats.SetStatName(0x10000 + number, &name);
        stats.AddStat(0x10000 + number, 1500u);
        same.emplace_back("FramesOfTransfer" + std::to_string(number), 1500);
    }

    candidate(row, "ours", [] { return vrStatCollector::Singleton().asJson(); });
    candidate(row, "limit", [same] {
        Json::Value members(Json::objectValue);
        for (auto const& [name, value] : same)
            members[name] = value;
        return members.toStyledString();
    });
}

} // namespace benchmarks

#endif
