// Paths as values: entered in whatever form a caller has, read in one normal form, taken apart on
// demand. A path knows whether it is a file's or a folder's, which the text alone does not tell.
// Nothing here touches a disk, and every text parses.

#include <vrUtils/Path.h>

#include <iostream>

int main() {
    auto const clip = vr::Path::file(L"server", L"share/Media/day.1", L"clip.take.mxf");
    std::wcout << L"clip: " << clip << L'\n';

    auto const& parts = clip.components();
    std::wcout << L"host " << parts.host() << L", share " << parts.firstFolder() << L", name "
               << parts.fileName() << L", extension " << parts.extension() << L'\n';
    for (auto const& folder : parts.folders())
        std::wcout << L"folder: " << folder << L'\n';

    // The dot of a folder begins no extension.
    auto const day = vr::Path::folder(L"C:\\Media\\day.1");
    std::wcout << L"as a folder: " << day.components().fileName() << L'\n';
    auto const sameText = vr::Path::file(L"C:\\Media\\day.1");
    std::wcout << L"as a file: " << sameText.components().fileName() << L'\n';

    // Case does not tell paths apart, nor does the kind of separator.
    auto const again = vr::Path::file(L"//SERVER/share/media/DAY.1/clip.take.mxf");
    std::wcout << (again == clip ? L"one path" : L"two paths") << L'\n';

    // A folder that is to take something in ends in a separator.
    auto const target = vr::Path::folder(L"D:\\Archive\\");
    auto const below = clip.removeCommonRoot(vr::Path::folder(L"\\\\server\\share\\"));
    std::wcout << L"moved: " << target + below << L'\n';

    // A copy keeps the text as it was entered; an assigned path takes the normal form, which for a
    // path relative to a drive is another path.
    auto const relative = vr::Path::file(L"C:clip.mxf");
    auto const copy = relative;
    vr::Path assigned;
    assigned = relative;
    std::wcout << L"copied: " << (copy.isAbsolute() ? L"absolute" : L"relative") << L", assigned: "
               << (assigned.isAbsolute() ? L"absolute" : L"relative") << L'\n';
    return again == clip ? 0 : 1;
}
