#ifndef VRUTILS_PFC_H
#define VRUTILS_PFC_H

/// @file
/// The reports of a movie's pre-flight check (PFC).
///
/// A check leaves an XML report and a genealogy report in folders beside the movie. An HTML report
/// is made of the XML one when it is asked for, by the program "PFCreportGenerator.exe", which the
/// platform finds by its search rules: beside the host program first.
///
/// | report    | of `F\M.ext`         |
/// |-----------|----------------------|
/// | XML       | `F\pfc\M.xml`        |
/// | genealogy | `F\genealogy\M.xml`  |
/// | HTML      | `F\pfchtml\M.html`   |
///
/// Nothing here keeps state; all of it may be called from any thread. Nothing keeps two calls from
/// making the HTML report of one movie at the same time, over each other.

#include "vrUtils/Path.h"

#include <string>
#include <utility>
#include <vector>

namespace vrUtils::PFC {

/// Which movie.
class VRUTILS_API PFCReportParameters {
  public:
    /// Keeps the path of the movie.
    explicit PFCReportParameters(vr::Path const& moviePath) : m_moviePath(moviePath) {}

    /// The path of the movie.
    vr::Path MoviePath() const { return m_moviePath; }

  private:
    vr::Path m_moviePath;
};

/// Which movie, and what its HTML report is to say.
class VRUTILS_API PFCHTMLReportParameters : public PFCReportParameters {
  public:
    /// Keeps all three.
    PFCHTMLReportParameters(
        vr::Path const& moviePath, std::wstring movieName, std::wstring reportSignature)
        : PFCReportParameters(moviePath),
          m_movieName(std::move(movieName)),
          m_reportSignature(std::move(reportSignature)) {}

    /// What the report is to call the movie.
    std::wstring MovieName() const { return m_movieName; }

    /// The signature for the report to bear.
    std::wstring ReportSignature() const { return m_reportSignature; }

  private:
    std::wstring m_movieName;
    std::wstring m_reportSignature;
};

/// The genealogy report's file. A movie's extension is replaced, or added if it has none; the dot
/// in the name of a path that is a folder's begins no extension, and stays.
VRUTILS_API vr::Path getGenealogyFileName(vr::Path const& movie);

/// The XML report's file, by the same rule.
VRUTILS_API vr::Path getPFCFileName(vr::Path const& movie);

/// The HTML report's file, by the same rule.
VRUTILS_API vr::Path getPFCHTMLFileName(vr::Path const& movie);

/// Reads the XML report, of at most 1 GiB.
/// @param report receives the bytes; not null
/// @throws vrException as `vrUtils::Files::LoadSmallFile`
VRUTILS_API void getPFCXMLReport(PFCReportParameters const& parameters, std::vector<char>* report);

/// Reads the genealogy report, as above.
VRUTILS_API void
getPFCGenealogyReport(PFCReportParameters const& parameters, std::vector<char>* report);

/// Makes the HTML report and reads what then stands on disk, as above: **an earlier report, if the
/// program failed or was not done in time**, and possibly half a report.
/// @throws vrUtils::Storage::vrCreateFolderException as `createPFCHTMLReport`
VRUTILS_API void
getPFCHTMLReport(PFCHTMLReportParameters const& parameters, std::vector<char>* report);

/// Makes the HTML report's folder and runs the program, for at most 5 seconds; after that it runs
/// on by itself. Its end and what it answered are only logged, under the module name "PFC HTML".
///
/// The program is given the XML file, the HTML file, the movie's name and the signature, each
/// between double quotes if it holds a blank or a tab. Quotes inside are not escaped. What is empty
/// is left out, and the rest moves forward.
/// @throws vrUtils::Storage::vrCreateFolderException if the folder cannot be made
VRUTILS_API void createPFCHTMLReport(PFCHTMLReportParameters const& parameters);

} // namespace vrUtils::PFC

#endif
