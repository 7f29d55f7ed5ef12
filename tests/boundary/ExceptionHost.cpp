// A host program that has every exception class of the library thrown at it by another module, and
// shows which handlers see which.

#include "tests/boundary/Raiser.h"
#include "vrUtils/vrUtils.h"

#include <cstdio>
#include <exception>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace vrUtils;
using Names = std::vector<std::string>;

// Whether a handler for one class alone sees what is thrown.
template <typename Exception>
bool sees(std::string const& className) {
    try {
        raise(className);
    } catch (Exception const&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

std::map<std::string, bool (*)(std::string const&)> const handlers{
    {"std::exception", sees<std::exception>},
    {"vrException", sees<vrException>},
    {"vrUnsetValueException", sees<vrUnsetValueException>},
    {"LockFileException", sees<Files::LockFileException>},
    {"vrInvalidIndexPathException", sees<Files::vrInvalidIndexPathException>},
    {"vrRegistryAccessException", sees<Registry::vrRegistryAccessException>},
    {"vrRegistryValueMissingException", sees<Registry::vrRegistryValueMissingException>},
    {"vrSocketException", sees<TcpComms::vrSocketException>},
    {"BadCommandLineException", sees<CmdLineProcessor::BadCommandLineException>},
    {"KeyValueNotPresentException", sees<KeyValue::KeyValueNotPresentException>},
    {"KeyValueWrongTypeException", sees<KeyValue::KeyValueWrongTypeException>},
    {"vrStorageException", sees<Storage::vrStorageException>},
    {"vrBadHostException", sees<Storage::vrBadHostException>},
    {"vrCreateFolderException", sees<Storage::vrCreateFolderException>},
    {"vrCopyFileException", sees<Storage::vrCopyFileException>},
    {"vrDeleteFileException", sees<Storage::vrDeleteFileException>},
    {"vrHostException", sees<Host::vrHostException>},
    {"vrFailedToGetHostNameException", sees<Host::vrFailedToGetHostNameException>},
};

// The base of each class; what has none stands alone.
std::map<std::string, std::string> const bases{
    {"vrUnsetValueException", "vrException"},
    {"LockFileException", "vrException"},
    {"vrRegistryAccessException", "vrException"},
    {"vrRegistryValueMissingException", "vrException"},
    {"vrSocketException", "vrException"},
    {"BadCommandLineException", "vrException"},
    {"KeyValueNotPresentException", "vrException"},
    {"KeyValueWrongTypeException", "vrException"},
    {"vrBadHostException", "vrStorageException"},
    {"vrCreateFolderException", "vrStorageException"},
    {"vrCopyFileException", "vrStorageException"},
    {"vrDeleteFileException", "vrStorageException"},
    {"vrFailedToGetHostNameException", "vrHostException"},
};

bool shouldSee(std::string const& handler, std::string const& className) {
    auto const base = bases.find(className);
    return handler == className || (base != bases.end() && handler == base->second);
}

bool isFieldsIntact() {
    try {
        raise("vrSocketException");
    } catch (vrException const& failure) {
        return failure.code() == 0x80004005 && failure.file() == L"Unit" && failure.line() == 7 &&
               failure.message() == L"text";
    }
    return false;
}

} // namespace

int main() {
    int faults = raisedClasses().size() == 17 && isFieldsIntact() ? 0 : 1;
    for (auto const& className : raisedClasses()) {
        std::printf("%-32s is seen by", className.c_str());
        for (auto const& [handler, seesClass] : handlers) {
            bool const seen = seesClass(className);
            if (seen)
                std::printf(" %s", handler.c_str());
            if (seen != shouldSee(handler, className)) {
                std::printf(" (WRONG: %s)", handler.c_str());
                ++faults;
            }
        }
        std::printf("\n");
    }
    if (faults == 0)
        std::puts("all tests of this program passed");
    return faults;
}
