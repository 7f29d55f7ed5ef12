#include "tests/boundary/Raiser.h"

#include "vrUtils/vrUtils.h"

#include <functional>
#include <map>

namespace {

using namespace vrUtils;

template <typename Exception, typename... Arguments>
std::function<void()> raising(Arguments... arguments) {
    return [=] { throw Exception(arguments...); };
}

std::map<std::string, std::function<void()>> const& raisers() {
    vrException const base("Unit", 7, L"text", 0x80004005);
    auto const path = vr::Path::file(L"C:\\Media\\a.mxf");
    std::wstring const text = L"C:\\Media";
    static std::map<std::string, std::function<void()>> const all{
        {"vrException", raising<vrException>(base)},
        {"vrUnsetValueException", [] { UtilValue<int>().get(); }},
        {"LockFileException", raising<Files::LockFileException>(path)},
        {"vrInvalidIndexPathException", raising<Files::vrInvalidIndexPathException>(path)},
        {"vrRegistryAccessException", raising<Registry::vrRegistryAccessException>(base)},
        {"vrRegistryValueMissingException",
         raising<Registry::vrRegistryValueMissingException>(base)},
        {"vrSocketException", raising<TcpComms::vrSocketException>(base)},
        {"BadCommandLineException", raising<CmdLineProcessor::BadCommandLineException>(text)},
        {"KeyValueNotPresentException", raising<KeyValue::KeyValueNotPresentException>()},
        {"KeyValueWrongTypeException", raising<KeyValue::KeyValueWrongTypeException>()},
        {"vrStorageException", raising<Storage::vrStorageException>(5u, text)},
        {"vrBadHostException", raising<Storage::vrBadHostException>(5u, text)},
        {"vrCreateFolderException", raising<Storage::vrCreateFolderException>(5u, text)},
        {"vrCopyFileException", raising<Storage::vrCopyFileException>(5u, text)},
        {"vrDeleteFileException", raising<Storage::vrDeleteFileException>(5u, text)},
        {"vrHostException", raising<Host::vrHostException>()},
        {"vrFailedToGetHostNameException", raising<Host::vrFailedToGetHostNameException>()},
    };
    return all;
}

} // namespace

std::vector<std::string> raisedClasses() {
    std::vector<std::string> names;
    for (auto const& [name, raiser] : raisers())
        names.push_back(name);
    return names;
}

void raise(std::string const& className) { raisers().at(className)(); }
