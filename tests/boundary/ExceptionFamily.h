#ifndef TESTS_BOUNDARY_EXCEPTIONFAMILY_H
#define TESTS_BOUNDARY_EXCEPTIONFAMILY_H

#include "vrUtils/vrUtils.h"

#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

// Every exception class of the library: how one is thrown, and which handlers see it.
struct ExceptionClass {
    std::string name;
    std::function<void()> raise;
    std::vector<std::string> handlers; // the classes whose handler catches it, itself included

    friend std::ostream& operator<<(std::ostream& stream, ExceptionClass const& one) {
        return stream << one.name;
    }
};

template <typename Exception, typename... Arguments>
std::function<void()> raising(Arguments... arguments) {
    return [=] { throw Exception(arguments...); };
}

inline std::vector<ExceptionClass> exceptionFamily() {
    using namespace vrUtils;
    vrException const base("Unit", 7, L"text", 0x80004005);
    auto const path = vr::Path::file(L"C:\\Media\\a.mxf");
    // clang-format off
    return {
        {"vrException", raising<vrException>(base), {"vrException"}},
        {"vrUnsetValueException", [] { UtilValue<int>().get(); }, {"vrException", "vrUnsetValueException"}},
        {"LockFileException", raising<Files::LockFileException>(path), {"vrException", "LockFileException"}},
        {"vrInvalidIndexPathException", raising<Files::vrInvalidIndexPathException>(path), {"vrInvalidIndexPathException"}},
        {"vrRegistryAccessException", raising<Registry::vrRegistryAccessException>(base), {"vrException", "vrRegistryAccessException"}},
        {"vrRegistryValueMissingException", raising<Registry::vrRegistryValueMissingException>(base), {"vrException", "vrRegistryValueMissingException"}},
        {"vrSocketException", raising<TcpComms::vrSocketException>(base), {"vrException", "vrSocketException"}},
        {"BadCommandLineException", raising<CmdLineProcessor::BadCommandLineException>(std::wstring(L"text")), {"vrException", "BadCommandLineException"}},
        {"KeyValueNotPresentException", raising<KeyValue::KeyValueNotPresentException>(), {"vrException", "KeyValueNotPresentException"}},
        {"KeyValueWrongTypeException", raising<KeyValue::KeyValueWrongTypeException>(), {"vrException", "KeyValueWrongTypeException"}},
        {"vrStorageException", raising<Storage::vrStorageException>(5u, std::wstring(L"C:\\a")), {"vrStorageException"}},
        {"vrBadHostException", raising<Storage::vrBadHostException>(5u, std::wstring(L"host")), {"vrStorageException", "vrBadHostException"}},
        {"vrCreateFolderException", raising<Storage::vrCreateFolderException>(5u, std::wstring(L"C:\\a")), {"vrStorageException", "vrCreateFolderException"}},
        {"vrCopyFileException", raising<Storage::vrCopyFileException>(5u, std::wstring(L"C:\\a")), {"vrStorageException", "vrCopyFileException"}},
        {"vrDeleteFileException", raising<Storage::vrDeleteFileException>(5u, std::wstring(L"C:\\a")), {"vrStorageException", "vrDeleteFileException"}},
        {"vrHostException", raising<Host::vrHostException>(), {"vrHostException"}},
        {"vrFailedToGetHostNameException", raising<Host::vrFailedToGetHostNameException>(), {"vrHostException", "vrFailedToGetHostNameException"}},
    };
    // clang-format on
}

// Whether a handler for one class alone sees what is raised.
template <typename Exception>
bool sees(std::function<void()> const& raise) {
    try {
        raise();
    } catch (Exception const&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

// The names of all classes whose handlers see what is raised.
inline std::vector<std::string> handlersThatSee(std::function<void()> const& raise) {
    using namespace vrUtils;
    std::vector<std::string> seeing;
    auto const note = [&](char const* name, bool seen) {
        if (seen)
            seeing.emplace_back(name);
    };
    note("std::exception", sees<std::exception>(raise));
    note("vrException", sees<vrException>(raise));
    note("vrUnsetValueException", sees<vrUnsetValueException>(raise));
    note("LockFileException", sees<Files::LockFileException>(raise));
    note("vrInvalidIndexPathException", sees<Files::vrInvalidIndexPathException>(raise));
    note("vrRegistryAccessException", sees<Registry::vrRegistryAccessException>(raise));
    note("vrRegistryValueMissingException", sees<Registry::vrRegistryValueMissingException>(raise));
    note("vrSocketException", sees<TcpComms::vrSocketException>(raise));
    note("BadCommandLineException", sees<CmdLineProcessor::BadCommandLineException>(raise));
    note("KeyValueNotPresentException", sees<KeyValue::KeyValueNotPresentException>(raise));
    note("KeyValueWrongTypeException", sees<KeyValue::KeyValueWrongTypeException>(raise));
    note("vrStorageException", sees<Storage::vrStorageException>(raise));
    note("vrBadHostException", sees<Storage::vrBadHostException>(raise));
    note("vrCreateFolderException", sees<Storage::vrCreateFolderException>(raise));
    note("vrCopyFileException", sees<Storage::vrCopyFileException>(raise));
    note("vrDeleteFileException", sees<Storage::vrDeleteFileException>(raise));
    note("vrHostException", sees<Host::vrHostException>(raise));
    note("vrFailedToGetHostNameException", sees<Host::vrFailedToGetHostNameException>(raise));
    return seeing;
}

#endif
