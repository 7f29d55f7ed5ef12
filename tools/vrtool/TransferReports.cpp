#include "tools/vrtool/TransferReports.h"

#include "tools/vrtool/FileCopy.h"
#include "tools/vrtool/TransferFailure.h"
#include "tools/vrtool/WholeFile.h"
#include "vrUtils/Files.h"
#include "vrUtils/PFC.h"

#include <vector>

namespace Files = vrUtils::Files;
namespace PFC = vrUtils::PFC;

namespace {

// With its time, so that the file is known to be the same when it is carried for itself too.
void copyWhole(vr::Path const& source, vr::Path const& target) {
    vrUtils::Storage::MakeDirectoryIterative(target);
    WholeFile file(target);
    std::vector<unsigned char> buffer(copyPieceSize);
    auto const copied = copyFile(source, file.part(), buffer, [](std::uint64_t) {});
    file.commit(copied.size);
}

} // namespace

vr::Path
carryReports(vr::Path const& source, vr::Path const& target, std::wstring const& signature) {
    if (!hasReport(source))
        return {};
    copyWhole(PFC::getPFCFileName(source), PFC::getPFCFileName(target));
    if (Files::FileExists(PFC::getGenealogyFileName(source)))
        copyWhole(PFC::getGenealogyFileName(source), PFC::getGenealogyFileName(target));

    auto html = madeReport(target);
    // The report of an earlier transfer would be taken for the new one if that cannot be made.
    Files::DeleteFileIfExists(html);
    PFC::createPFCHTMLReport(
        PFC::PFCHTMLReportParameters(target, target.components().fullName(), signature));
    if (!Files::FileExists(html))
        throw TransferFailure(L"PFCreportGenerator.exe has not made the report " + quoted(html));
    return html;
}

bool hasReport(vr::Path const& movie) { return Files::FileExists(PFC::getPFCFileName(movie)); }

vr::Path madeReport(vr::Path const& movie) { return PFC::getPFCHTMLFileName(movie); }
