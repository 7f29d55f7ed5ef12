#include "tools/vrtool/TransferReports.h"

#include "tools/vrtool/WholeFile.h"
#include "vrUtils/Files.h"
#include "vrUtils/PFC.h"

#include <vector>

namespace Files = vrUtils::Files;
namespace PFC = vrUtils::PFC;

namespace {

void save(std::vector<char> const& report, vr::Path const& file) {
    vrUtils::Storage::MakeDirectoryIterative(file);
    saveWhole(std::string(report.begin(), report.end()), file);
}

} // namespace

vr::Path
carryReports(vr::Path const& source, vr::Path const& target, std::wstring const& signature) {
    if (!Files::FileExists(PFC::getPFCFileName(source)))
        return {};
    PFC::PFCReportParameters const from(source);
    std::vector<char> report;
    PFC::getPFCXMLReport(from, &report);
    save(report, PFC::getPFCFileName(target));
    if (Files::FileExists(PFC::getGenealogyFileName(source))) {
        PFC::getPFCGenealogyReport(from, &report);
        save(report, PFC::getGenealogyFileName(target));
    }

    auto const html = PFC::getPFCHTMLFileName(target);
    // The report of an earlier transfer would be taken for the new one if that cannot be made.
    Files::DeleteFileIfExists(html);
    PFC::getPFCHTMLReport(
        PFC::PFCHTMLReportParameters(target, target.components().fullName(), signature), &report);
    return html;
}
