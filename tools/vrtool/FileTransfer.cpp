#include "tools/vrtool/FileTransfer.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/Inspection.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TransferFailure.h"
#include "tools/vrtool/TransferMessage.h"
#include "tools/vrtool/TransferProgress.h"
#include "tools/vrtool/TransferReports.h"
#include "tools/vrtool/WholeFile.h"
#include "vrUtils/Files.h"
#include "vrUtils/Storage.h"
#include "vrUtils/vrException.h"

#include <algorithm>
#include <chrono>

namespace Files = vrUtils::Files;
namespace Storage = vrUtils::Storage;

namespace {

// What the coarsest file systems keep of a time, in ticks of 100 nanoseconds.
constexpr std::uint64_t coarsestTime = 20'000'000;

// Asking after the key costs as much as a piece of the copy.
constexpr auto pauseBetweenLooks = std::chrono::milliseconds(50);

std::wstring quoted(vr::Path const& path) { return L'"' + path.components().wholePath() + L'"'; }

vr::Path placeIn(vr::Path const& folder, std::wstring const& place) {
    return vr::Path::file(folder.components().wholePath() + place);
}

bool isSameFile(vr::Path const& source, vr::Path const& target) {
    if (!Files::FileExists(target) || Files::FileLength(source) != Files::FileLength(target))
        return false;
    auto const sourceTime = Files::FileModificationDateTime(source);
    auto const targetTime = Files::FileModificationDateTime(target);
    return std::max(sourceTime, targetTime) - std::min(sourceTime, targetTime) < coarsestTime;
}

void requireSpace(TransferDestination const& destination, std::uint64_t size) {
    switch (Storage::CheckForDiskSpace(&destination.server, size)) {
    case 0:
        return;
    case Storage::DiskSpaceNotEnough:
        throw TransferFailure(
            L"not enough space at the destination for " + std::to_wstring(size) + L" bytes");
    default:
        throw TransferFailure(L"the free space of the destination cannot be read");
    }
}

void makeFolderOf(vr::Path const& target, TransferSetting& setting) {
    if (setting.folders.insert(target.components().folderPath()).second)
        Storage::MakeDirectoryIterative(target);
}

// Copies the old file out of the way and leaves it in its place until the new one takes that. Held
// open it cannot be deleted, which is the step of the deletion that is not wanted here.
void setAside(Storage::RecoverableFileDeleter& old, vr::Path const& target) {
    Files::FileHandleRead held;
    held.Open(target);
    try {
        old.Delete();
    } catch (Storage::vrDeleteFileException const&) {
        return;
    }
}

// What stands at the target must be what was copied there.
void requireWhole(vr::Path const& target, std::uint64_t size) {
    if (Files::FileLength(target) != size)
        throw TransferFailure(L"not all of it has arrived at " + quoted(target));
}

void replace(WholeFile& file, vr::Path const& target, std::uint64_t size) {
    Storage::RecoverableFileDeleter old(target, L"vrtool");
    setAside(old, target);
    file.commit();
    try {
        requireWhole(target, size);
    } catch (...) {
        old.Recover();
        throw;
    }
}

// One file on its way.
class Carrier {
  public:
    Carrier(TransferSource const& source, TransferSetting& setting)
        : m_source(source),
          m_setting(setting),
          m_target(placeIn(setting.destination.local, source.place)) {
        m_outcome.target = placeIn(setting.destination.folder, source.place);
        m_outcome.index = Files::ArchiveToIndexPathConverter().GetIndexPath(m_outcome.target);
    }

    TransferOutcome carry() {
        try {
            carryFile();
            leaveMessage();
            if (m_setting.report)
                m_outcome.report = carryReports(m_source.file, m_target, m_setting.signature);
        } catch (TransferCancelled const&) {
            m_outcome.result = TransferOutcome::cancelled;
        } catch (TransferFailure const& failure) {
            fail(failure.text());
        } catch (Files::LockFileException const&) {
            fail(L"another transfer has " + quoted(m_target));
        } catch (vrException const& failure) {
            fail(failure.message());
        } catch (Storage::vrCreateFolderException const& failure) {
            fail(
                L"cannot make the folder \"" + failure.text() + L"\": " +
                systemText(failure.error()));
        } catch (Storage::vrCopyFileException const& failure) {
            fail(
                L"cannot copy the old file to \"" + failure.text() + L"\": " +
                systemText(failure.error()));
        }
        return m_outcome;
    }

  private:
    void carryFile() {
        if (!m_source.failure.empty())
            throw TransferFailure(m_source.failure);
        m_outcome.size = Files::FileLength(m_source.file);
        if (isSameFile(m_source.file, m_target)) {
            m_outcome.result = TransferOutcome::alreadyThere;
            learnFormat();
            return;
        }
        requireSpace(m_setting.destination, *m_outcome.size);
        makeFolderOf(m_target, m_setting);
        Files::LockFile const lock(m_target);
        auto const isOld = Files::FileExists(m_target);
        if (isOld && !m_setting.replace)
            throw TransferFailure(
                L"there is another file at " + quoted(m_target) + L"; --replace replaces it");

        WholeFile file(m_target);
        copyTo(file.part());
        requireWhole(file.part(), *m_outcome.size);
        if (isOld)
            replace(file, m_target, *m_outcome.size);
        else
            file.commit();
        m_outcome.result = isOld ? TransferOutcome::replaced : TransferOutcome::transferred;
    }

    void learnFormat() {
        auto const inspection = inspectFile(m_target);
        if (inspection.samplesPerSecond && inspection.bitsPerSample)
            m_outcome.format = {*inspection.samplesPerSecond, *inspection.bitsPerSample};
        m_outcome.formatFailure = inspection.failure;
    }

    void copyTo(vr::Path const& part) {
        TransferProgress progress(
            m_setting.console, m_source.file.components().fullName(), *m_outcome.size);
        auto nextLook = TransferProgress::Clock::now() + pauseBetweenLooks;
        auto const copied =
            copyFile(m_source.file, part, m_setting.buffer, [&](std::uint64_t done) {
                auto const now = TransferProgress::Clock::now();
                if (now < nextLook)
                    return;
                nextLook = now + pauseBetweenLooks;
                if (m_setting.key.wasPressed())
                    throw TransferCancelled();
                progress.show(done);
            });
        m_outcome.size = copied.size;
        m_outcome.format = copied.format;
        m_outcome.formatFailure = copied.formatFailure;
    }

    // A transfer that died behind its file has left none.
    void leaveMessage() {
        auto const file = messageFile(m_target);
        if (m_outcome.result == TransferOutcome::alreadyThere && Files::FileExists(file))
            return;
        makeFolderOf(file, m_setting);
        saveWhole(
            messageText(
                {m_source.file, m_outcome.target, m_outcome.index, *m_outcome.size,
                 m_outcome.format}),
            file);
    }

    // A file that is there stays what it is; what is missing beside it is told all the same.
    void fail(std::wstring const& reason) { m_outcome.failure = reason; }

    TransferSource const& m_source;
    TransferSetting& m_setting;
    vr::Path m_target;
    TransferOutcome m_outcome;
};

} // namespace

TransferOutcome transferFile(TransferSource const& source, TransferSetting& setting) {
    return Carrier(source, setting).carry();
}
