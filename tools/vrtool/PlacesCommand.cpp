#include "tools/vrtool/PlacesCommand.h"

#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/Storage/KnownPlaces.h"

namespace Storage = vrUtils::Storage;

namespace {

constexpr char explanation[] =
    R"(The places need not be there, except for vorraneData: like every program that
asks for it, this makes it.

Ends with 0, with 1 if a row has a failure, 2 if the arguments are wrong.

Example:
  vrtool places)";

template <typename Find>
Fact findPlace(char const* name, Find const& find) {
    return findFact(name, [&] { return toUtf8(find().components().wholePath()); });
}

Facts allPlaces() {
    return {
        findPlace("programFiles", Storage::GetProgramFileFolder),
        findPlace("vorraneData", [] { return Storage::GetVorraneCommonAppDataFolder(nullptr); }),
        findPlace("quantumData", [] { return Storage::GetPFRCommonAppDataFolder(nullptr); }),
        findPlace("media", Storage::GetOstrelMediaPath),
        findPlace("referenceMovies", Storage::GetReferenceMoviesPath),
        findPlace("localMedia", Storage::GetLocalOstrelMediaPath),
        findPlace("localReferenceMovies", Storage::GetLocalReferenceMoviesPath),
    };
}

} // namespace

PlacesCommand::PlacesCommand()
    : Command("places", "Show the places that follow from the machine", explanation) {}

void PlacesCommand::declare(CLI::App& arguments) {
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
}

int PlacesCommand::run(Console& console) const {
    auto const facts = allPlaces();
    console.out(m_json ? jsonOf(facts) : tableOf(facts, console.width()));
    return hasFailure(facts) ? ExitCode::failure : ExitCode::success;
}
