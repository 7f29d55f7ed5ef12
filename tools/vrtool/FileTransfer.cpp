#include "tools/vrtool/FileTransfer.h"

#include "tools/vrtool/CancelKey.h"
#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/FileState.h"
#include "tools/vrtool/Inspection.h"
#include "tools/vrtool/SetAside.h"
#include "tools/vrtool/SystemText.h"
#include "tools/vrtool/TargetLock.h"
#include "tools/vrtool/TransferFailure.h"
#include "tools/vrtool/TransferMessage.h"
#include "tools/vrtool/TransferProgress.h"
#include "tools/vrtool/TransferReports.h"
#include "tools/vrtool/WholeFile.h"
#include "vrUtils/Files.h"
#include "vrUtils/Storage.h"
#include "vrUtils/vrException.h"

#include <chrono>

namespace Storage = vrUtils::Storage;

namespace {

// Asking after the key costs as much as a piece of the copy.
constexpr auto pauseBetweenLooks = std::chrono::milliseconds(50);

vr::Path placeIn(vr::Path const& folder, std::wstring const& place) {
    return vr::Path::file(folder.components().wholePath() + place);
}

FileState stateOfSource(vr::Path const& source) {
    auto const state = stateOf(source);
    if (!state)
        throw TransferFailure(quoted(source) + L" is no longer there");
    return *state;
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
    auto const folder = target.components().folderPath();
    if (setting.folders.count(folder) != 0)
        return;
    Storage::MakeDirectoryIterative(target);
    setting.folders.insert(folder);
}

void replace(WholeFile& file, vr::Path const& target, std::uint64_t size) {
    SetAside old(target);
    file.commit(size);
    try {
        requireWhole(target, size);
    } catch (TransferFailure const&) {
        old.putBack();
        throw;
    }
}

// One file on its way.
class Carrier {
  public:
    Carrier(TransferSource const& source, TransferSetting& setting)
        : m_source(source), m_setting(setting) {}

    TransferOutcome carry() {
        try {
            carryAll();
        } catch (TransferCancelled const&) {
            m_outcome.result = TransferOutcome::cancelled;
        } catch (TransferFailure const& failure) {
            // A file that is there stays what it is; what is missing beside it is told as well.
            m_outcome.failure = failure.text();
        } catch (vrException const& failure) {
            m_outcome.failure = failure.message();
        } catch (Storage::vrCreateFolderException const& failure) {
            m_outcome.failure = L"cannot make the folder \"" + failure.text() + L"\": " +
                                systemText(failure.error());
        }
        return m_outcome;
    }

  private:
    void carryAll() {
        begin();
        auto const there = stateOf(m_target);
        if (!m_setting.report && isCopied(there) && hasMessage()) {
            m_outcome.result = TransferOutcome::alreadyThere;
            removeDeadLock(m_target);
            learnFormat();
            return;
        }
        makeFolderOf(m_target, m_setting);
        auto const lock = lockTarget(m_target);
        // What came meanwhile stands in the way of the new file.
        carryFile(there ? stateOf(m_target) : there);
        leaveMessage();
        if (m_setting.report)
            m_outcome.report = carryReports(m_source.file, m_target, m_setting.signature);
    }

    void begin() {
        if (!m_source.failure.empty())
            throw TransferFailure(m_source.failure);
        m_target = placeIn(m_setting.destination.local, m_source.place);
        m_outcome.target = placeIn(m_setting.destination.folder, m_source.place);
        m_outcome.index =
            vrUtils::Files::ArchiveToIndexPathConverter().GetIndexPath(m_outcome.target);
        m_state = stateOfSource(m_source.file);
        m_outcome.size = m_state.size;
    }

    bool isCopied(std::optional<FileState> const& there) const {
        return there && isCopyOf(m_state, *there);
    }

    // No for a place that has no name for one: the failure comes when it is to be written.
    bool hasMessage() const {
        try {
            return stateOf(messageFile(m_target)).has_value();
        } catch (TransferFailure const&) {
            return false;
        }
    }

    void carryFile(std::optional<FileState> const& old) {
        if (isCopied(old)) {
            m_outcome.result = TransferOutcome::alreadyThere;
            learnFormat();
            return;
        }
        if (old)
            requireReplaceable(*old);
        // The old file is there twice for a while.
        requireSpace(m_setting.destination, m_state.size + (old ? old->size : 0));

        WholeFile file(m_target);
        copyTo(file.part());
        if (old)
            replace(file, m_target, *m_outcome.size);
        else
            file.commitNew(*m_outcome.size);
        m_outcome.result = old ? TransferOutcome::replaced : TransferOutcome::transferred;
    }

    void requireReplaceable(FileState const& old) const {
        if (old.isFolder)
            throw TransferFailure(L"there is a folder at " + quoted(m_target));
        if (!m_setting.replace)
            throw TransferFailure(
                L"there is another file at " + quoted(m_target) + L"; --replace replaces it");
        if (old.isReadOnly)
            throw TransferFailure(L"the file at " + quoted(m_target) + L" is read-only");
    }

    void learnFormat() {
        auto const inspection = inspectFile(m_target);
        if (inspection.samplesPerSecond && inspection.bitsPerSample)
            m_outcome.format = {*inspection.samplesPerSecond, *inspection.bitsPerSample};
        m_outcome.formatFailure = inspection.failure;
    }

    void copyTo(vr::Path const& part) {
        TransferProgress progress(
            m_setting.console, m_source.file.components().fullName(), m_state.size);
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
        if (m_outcome.result == TransferOutcome::alreadyThere && stateOf(file))
            return;
        makeFolderOf(file, m_setting);
        saveWhole(
            messageText(
                {m_setting.server, m_source.file, m_outcome.target, m_outcome.index,
                 *m_outcome.size, m_outcome.format}),
            file);
    }

    TransferSource const& m_source;
    TransferSetting& m_setting;
    vr::Path m_target;
    FileState m_state;
    TransferOutcome m_outcome;
};

} // namespace

TransferOutcome transferFile(TransferSource const& source, TransferSetting& setting) {
    return Carrier(source, setting).carry();
}
