#include "tools/vrtool/Inspection.h"

#include "tools/vrtool/AudioFormat.h"
#include "tools/vrtool/Platform.h"
#include "vrUtils/Files.h"

#include <vector>

namespace {

std::vector<unsigned char> readHead(vr::Path const& path) {
    vrUtils::Files::FileHandleRead file;
    file.Open(path);

    std::vector<unsigned char> head(audioHeadSize);
    DWORD count = 0;
    BOOL const read =
        ReadFile(file.Handle(), head.data(), static_cast<DWORD>(head.size()), &count, nullptr);
    DWORD const error = GetLastError();
    if (!read)
        throw vrException(
            __LINE__, L"ReadFile failed on \"" + path.components().wholePath() + L"\" - error " +
                          std::to_wstring(error));
    head.resize(count);
    return head;
}

void readFormat(vr::Path const& path, Inspection& inspection) {
    if (!hasAudioFormat(inspection.extension))
        return;
    auto const head = readHead(path);
    auto const format = audioFormatOf(inspection.extension, head.data(), head.size());
    inspection.samplesPerSecond = format->samplesPerSecond;
    inspection.bitsPerSample = format->bitsPerSample;
}

} // namespace

Inspection inspectPath(vr::Path const& path) {
    auto const& parts = path.components();
    Inspection inspection;
    inspection.path = parts.wholePath();
    inspection.rootOrDrive = parts.rootAndDrive();
    inspection.folderCount = parts.folders().size();
    inspection.name = parts.fileName();
    inspection.extension = parts.extension();
    if (!parts.fullName().empty())
        vrUtils::Files::GenerateLegalFilename(parts.fullName(), inspection.legalName, false);
    return inspection;
}

Inspection inspectFile(vr::Path const& path) {
    Inspection inspection = inspectPath(path);
    try {
        inspection.size = vrUtils::Files::FileLength(path);
        inspection.ageHours = vrUtils::Files::GetAgeOfFileInHours(path);
        inspection.offline = vrUtils::Files::FileIsOffline(path);
        if (!*inspection.offline)
            readFormat(path, inspection);
    } catch (vrException const& failure) {
        inspection.failure = failure.message();
    }
    return inspection;
}
