#include "tools/vrtool/FileCopy.h"

#include "tools/vrtool/FileAccess.h"
#include "tools/vrtool/TransferStatistics.h"
#include "vrUtils/vrException.h"
#include "vrUtils/vrStatCollector.h"

#include <algorithm>

namespace {

void learnFormat(
    CopiedFile& copied, vr::Path const& source, std::vector<unsigned char> const& buffer,
    std::size_t size) {
    try {
        copied.format = audioFormatOf(
            source.components().extension(), buffer.data(), std::min(size, audioHeadSize));
    } catch (vrException const& failure) {
        copied.formatFailure = failure.message();
    }
}

} // namespace

CopiedFile copyFile(
    vr::Path const& source, vr::Path const& target, std::vector<unsigned char>& buffer,
    CopyListener const& listener) {
    auto const from = openToRead(source);
    auto const to = openToWrite(target);

    auto& stats = vrStatCollector::Singleton();
    CopiedFile copied;
    while (auto const size = readPiece(from, buffer.data(), buffer.size())) {
        stats.AddStat(bytesReadStat, size);
        if (copied.size == 0)
            learnFormat(copied, source, buffer, size);
        writePiece(to, buffer.data(), size);
        stats.AddStat(bytesWrittenStat, size);
        copied.size += size;
        listener(copied.size);
    }
    if (copied.size == 0)
        learnFormat(copied, source, buffer, 0);
    copyTime(from, to);
    return copied;
}
