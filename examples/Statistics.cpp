// What a process has done: counts in one table that any thread adds to and a reporting side reads
// as JSON, a count that tells when the last one has gone, and the time it took, in the log.

#include <vrUtils/Performance.h>
#include <vrUtils/counter.h>
#include <vrUtils/vrStatCollector.h>

#include <json/json.h>

#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int bytesRead = 0x10000;
constexpr int retries = 7;
constexpr auto openTransfers = static_cast<vrUtils::CounterIDs>(0);

// The last one to end switches the light off.
void transfer() {
    auto& stats = vrStatCollector::Singleton();
    stats.AddStat(bytesRead, 4096u);
    stats.AddStat(retries, 1u);
    if (vrUtils::counter().Decrement(openTransfers))
        std::wcout << L"all transfers have ended\n";
}

Json::Value parsed(std::wstring const& text) {
    std::string const bytes(text.begin(), text.end()); // all names of this program are ASCII
    Json::Value document;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(bytes.data(), bytes.data() + bytes.size(), &document, nullptr);
    return document;
}

} // namespace

int main() {
    vrUtils::Performance::ElapsedTimeLogger const timing(L"Statistics");
    vrStatCollector::Singleton().SetStatName(retries, L"Retries");

    // Counted ahead of the start: the first to end must not be taken for the last.
    constexpr int count = 4;
    for (int i = 0; i < count; ++i)
        vrUtils::counter().Increment(openTransfers);
    std::vector<std::thread> transfers;
    for (int i = 0; i < count; ++i)
        transfers.emplace_back(transfer);
    for (auto& thread : transfers)
        thread.join();

    auto const report = parsed(vrStatCollector::Singleton().asJson());
    std::cout << "bytes read: " << report["BytesRead"].asUInt64() << '\n'
              << "retries: " << report["Retries"].asUInt64() << '\n';
    return report["BytesRead"].asUInt64() == count * 4096 ? 0 : 1;
}
