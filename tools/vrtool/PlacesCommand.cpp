#include "tools/vrtool/PlacesCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Storage/KnownPlaces.h"

namespace Storage = vrUtils::Storage;

namespace {

constexpr char placesExplanation[] =
    R"(The places need not be there, except for vorraneData: like every program that
asks for it, this makes it, with the chain of folders down to FOLDER. FOLDER
ends in a backslash; without one its last word is a file's name, and not made.

Ends with 0, with 1 if a row has a failure, 2 if the arguments are wrong.

Example:
  vrtool places
  vrtool places --subfolder Logs\Transfer\)";

template <typename Find>
Fact findPlace(char const* name, Find const& find) {
    return findFact(name, [&] { return toUtf8(find().components().wholePath()); });
}

// @param subfolder below those of all users' data; null for none
Facts allPlaces(wchar_t const* subfolder) {
    return {
        findPlace("programFiles", Storage::GetProgramFileFolder),
        findPlace("vorraneData", [=] { return Storage::GetVorraneCommonAppDataFolder(subfolder); }),
        findPlace("quantumData", [=] { return Storage::GetPFRCommonAppDataFolder(subfolder); }),
        findPlace("media", Storage::GetOstrelMediaPath),
        findPlace("referenceMovies", Storage::GetReferenceMoviesPath),
        findPlace("localMedia", Storage::GetLocalOstrelMediaPath),
        findPlace("localReferenceMovies", Storage::GetLocalReferenceMoviesPath),
    };
}

} // namespace

PlacesCommand::PlacesCommand()
    : Command("places", "Show the places that follow from the machine", placesExplanation) {}

void PlacesCommand::declare(CLI::App& arguments) {
    m_subfolder = arguments.add_option("--subfolder")->type_name("FOLDER");
    m_subfolder->description("A folder below vorraneData and quantumData");
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int PlacesCommand::run(Console& console) const {
    auto const subfolder = CommandLine::valuesOf(*m_subfolder);
    auto const facts = allPlaces(subfolder.empty() ? nullptr : subfolder.front().c_str());
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return hasFailure(facts) ? ExitCode::failure : ExitCode::success;
}
