// 1 GiB carried to an empty folder, in one file and in 1,000, beside the platform's plain copy. Ours
// does all that a transfer does: space, folders, lock, part, format, message, statistics.

#include "benchmarks/Candidate.h"
#include "benchmarks/Folder.h"

#include "foundation/Platform.h"
#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/FileTransfer.h"
#include "tools/vrtool/SocketLayer.h"
#include "tools/vrtool/TransferSummary.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace filesystem = std::filesystem;

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t totalSize = 1024 * mebibyte;

// The sources, made at the first use, and an empty folder to carry them to.
class Media {
  public:
    explicit Media(std::size_t count)
        : m_count(count),
          m_from(benchmarks::fileNamed((L"transfer-from-" + std::to_wstring(count)).c_str())),
          m_to(benchmarks::fileNamed(L"transfer-to")) {}

    void prepare() const {
        filesystem::remove_all(m_to);
        filesystem::create_directories(m_to);
        if (filesystem::exists(m_from))
            return;
        filesystem::create_directories(m_from);
        std::string const bytes(totalSize / m_count, 'v');
        for (std::size_t number = 0; number < m_count; ++number)
            std::ofstream(m_from / nameOf(number), std::ios::binary) << bytes;
    }

    void clear() const { filesystem::remove_all(m_to); }

    filesystem::path const& to() const { return m_to; }

    std::vector<TransferSource> sources() const { return transferSources(m_from.native()); }

  private:
    static std::wstring nameOf(std::size_t number) {
        return L"clip " + std::to_wstring(number) + L".mxf";
    }

    std::size_t m_count;
    filesystem::path m_from;
    filesystem::path m_to;
};

void carry(Media const& media) {
    static SocketLayer const sockets;
    static Console console;
    CancelKey const key;
    auto const destination = transferDestination(media.to().native());
    TransferSetting setting{
        console, key,       destination,  false,
        false,   L"server", L"benchmark", std::vector<unsigned char>(copyPieceSize),
        {}};
    TransferSummary summary;
    for (auto const& source : media.sources())
        summary.add(source.place, transferFile(source, setting));
    if (!summary.allWell())
        throw std::runtime_error("a file was not carried");
}

void copy(Media const& media) {
    auto const sources = media.sources();
    filesystem::create_directories(
        media.to() / filesystem::path(sources.front().place).parent_path());
    for (auto const& source : sources)
        if (!CopyFileW(
                source.file.components().wholePath().c_str(), (media.to() / source.place).c_str(),
                FALSE))
            throw std::runtime_error("a file was not copied");
}

// The folder is emptied between the runs, which does not count.
template <class Work>
void candidate(char const* row, char const* name, std::size_t count, Work work) {
    benchmark::RegisterBenchmark(
        (std::string(row) + '/' + name).c_str(),
        [=](benchmark::State& state) {
            Media const media(count);
            for (auto _ : state) {
                media.prepare();
                auto const begin = std::chrono::steady_clock::now();
                work(media);
                std::chrono::duration<double> const time = std::chrono::steady_clock::now() - begin;
                state.SetIterationTime(time.count());
            }
            media.clear();
        })
        ->UseManualTime();
}

} // namespace

void benchmarks::registerCandidates() {
    for (auto const& [row, count] :
         {std::pair("transfer-1", 1), std::pair("transfer-1000", 1000)}) {
        candidate(row, "ours", static_cast<std::size_t>(count), carry);
        candidate(row, "CopyFileW", static_cast<std::size_t>(count), copy);
    }
}
