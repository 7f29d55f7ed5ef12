// What a process knows of itself: computer, user, memory, the places that follow from the machine,
// and whether it is the only one of its name. What it is doing now is one text for all threads.

#include <vrUtils/Process.h>
#include <vrUtils/ProcessStatus.h>
#include <vrUtils/SingleAppInstance.h>
#include <vrUtils/Storage.h>
#include <vrUtils/vrException.h>

#include <iostream>
#include <string>

namespace Process = vrUtils::Process;
namespace Storage = vrUtils::Storage;
using vrUtils::SingleAppInstance::SingleInstance;

namespace {

void showPlaces() {
    std::wcout << L"programs in " << Process::GetVorranePath() << L'\n' << L"data in "
               << Storage::GetPFRCommonAppDataFolder(L"Index\\") << L'\n' << L"media in "
               << Storage::GetLocalOstrelMediaPath() << L'\n';
    // Others reach the same folder by this computer's name.
    std::wcout << L"shared as " << Storage::GetOstrelMediaPath() << L'\n';
}

void showProcess() {
    vrUtils::ProcessStatus::status(L"taking stock");
    std::wcout << L"computer " << Process::GetComputerNameW() << L", user "
               << Process::GetCurrentUserName() << L", status " << vrUtils::ProcessStatus::status()
               << L'\n'
               << (Process::GetCurrentProcessMemoryInfo().WorkingSetSize > 0 ? L"memory is known\n"
                                                                             : L"no memory\n");
}

} // namespace

int main() {
    // The name belongs to the session, so it tells the product and not just the program.
    std::wstring const name = L"vrUtils example Identity";
    SingleInstance first;
    if (first.isAnotherRunning(name)) {
        std::wcout << L"runs already\n";
        return 0;
    }
    try {
        showPlaces();
        showProcess();
    } catch (Storage::vrStorageException const& failure) {
        std::wcerr << failure.text() << L", error " << failure.error() << L'\n';
        return 1;
    } catch (vrException const& failure) {
        std::wcerr << failure.message() << L'\n';
        return 1;
    }
    SingleInstance second;
    std::wcout << (second.isAnotherRunning(name) ? L"a second one is told\n" : L"two of them\n");
    return 0;
}
