// What the debugger looks at: one value of each kind that has a printer, and a function to stop in.
#include "vrUtils/vrUtils.h"

namespace {

class OwnException : public vrException {
  public:
    OwnException() : vrException("Subject", 21, L"of a host", 0x80E06007) {}
};

// The debugger stops here, with the values of its caller, and with references to three of them: the
// exception as handlers see it.
int stopHere(vrException const& failure, vr::Path const& path, vr::PathSplitter const& parts) {
    return failure.code() == 0 || path.empty() || parts.folders().empty() ? 1 : 0;
}

} // namespace

int main() {
    using namespace vrUtils;
    auto const entered = vr::Path::file(L"server", L"share/Media", L"clip.mxf");
    vr::Path const parsed(L"C:/Media//day.1/clip.mxf", vr::Path::eDetect);
    vr::Path const relative = vr::Path::folder(L"Media\\");
    vr::Path const foreign = vr::Path::file(L"C:\\\x00DC\x6620\\a.mxf");
    vr::Path const endless = vr::Path::file(L"C:\\" + std::wstring(300, L'x') + L"\\clip.mxf");
    vr::PathCreator const creator(L"C:/Media");
    vr::PathSplitter const splitter(L"\\\\server\\share\\clip.mxf", true);
    auto const isParsed = endless.isAbsolute();

    UtilValue<std::uint32_t> const unsetRate;
    UtilValue<std::uint32_t> setRate;
    setRate.set(48000);
    UtilValue<vr::Path> setPath;
    setPath.set(relative);

    vrException const plain("Unit", 12, L"no such thing", 0x80004005);
    vrException const blank;
    OwnException const own;
    Files::LockFileException const lock(entered);
    Files::vrInvalidIndexPathException const index(parsed);
    Storage::vrCreateFolderException const folder(5, L"C:\\Media\\");
    [[maybe_unused]] Host::vrFailedToGetHostNameException const host;
    return isParsed && setRate.isSet() && setPath.isSet() && !unsetRate.isSet()
               ? stopHere(lock, relative, splitter)
               : 2;
}
