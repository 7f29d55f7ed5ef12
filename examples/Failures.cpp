// What a failure tells: its code, its source and a message for a person. A handler names the class
// it means, the special one in front of the general; and a value that is not known yet says so
// instead of passing for a zero.

#include <vrUtils/Files.h>
#include <vrUtils/UtilValue.h>

#include <cstdint>
#include <iostream>
#include <string>

namespace {

using Length = UtilValue<std::uint64_t>;

// A clip that has not arrived has no length, which is not a length of 0.
Length lengthOf(vr::Path const& clip) {
    Length length;
    if (vrUtils::Files::FileExists(clip))
        length.set(vrUtils::Files::FileLength(clip));
    return length;
}

void report(std::wstring const& what, vrException const& failure) {
    std::wcout << what << L": " << failure.message() << L" (" << failure.file() << L", code 0x"
               << std::hex << failure.code() << std::dec << L")\n";
}

bool printLength(vr::Path const& clip) {
    try {
        std::wcout << lengthOf(clip).get() << L" bytes\n";
        return true;
    } catch (vrUnsetValueException const& failure) {
        report(L"not there yet", failure);
    } catch (vrException const& failure) {
        report(L"cannot be read", failure);
    }
    return false;
}

} // namespace

int main() {
    auto const clip = vr::Path::file(L"C:\\no such folder\\clip.mxf");
    if (printLength(clip))
        return 1;

    try {
        vrUtils::Files::FileLength(clip);
        return 1;
    } catch (vrException const& failure) {
        report(L"asked without looking first", failure);
    }
    return 0;
}
