#include "tools/vrtool/Inspection.h"

#include "tools/vrtool/Platform.h"
#include "vrUtils/Files.h"
#include "vrUtils/Parsing.h"

#include <vector>

namespace {

constexpr std::size_t headSize = 65536;

bool hasExtension(Inspection const& inspection, wchar_t const* extension) {
    return CompareStringOrdinal(inspection.extension.c_str(), -1, extension, -1, TRUE) ==
           CSTR_EQUAL;
}

std::vector<unsigned char> readHead(vr::Path const& path) {
    vrUtils::Files::FileHandleRead file;
    file.Open(path);

    std::vector<unsigned char> head(headSize);
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

template <class Parser>
void readFormat(vr::Path const& path, Inspection& inspection) {
    auto const head = readHead(path);
    Parser parser(head.data(), static_cast<std::uint32_t>(head.size()));
    parser.Parse();
    inspection.samplesPerSecond = parser.GetSamplesPerSecond();
    inspection.bitsPerSample = parser.GetBitsPerSample();
}

void readFormat(vr::Path const& path, Inspection& inspection) {
    if (hasExtension(inspection, L".wav"))
        readFormat<vrUtils::Parsing::WavParser>(path, inspection);
    else if (
        hasExtension(inspection, L".aif") || hasExtension(inspection, L".aiff") ||
        hasExtension(inspection, L".aifc"))
        readFormat<vrUtils::Parsing::AIFParser>(path, inspection);
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
