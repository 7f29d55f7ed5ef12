// The file that the page on the registry dump shows is the one that is written.

#include "tests/docs/PageBlocks.h"
#include "tests/support/AbsentKey.h"
#include "tests/support/ScratchFolder.h"

#include <vrUtils/Registry.h>

#include <gmock/gmock.h>

#include <algorithm>

TEST(RegistryDumpPage, ShowsTheFileOfItsTree) {
    test::AbsentKey const tree(HKEY_CURRENT_USER, L"Software\\Vorrane\\Ostrel");
    tree.setText({}, L"the default value");
    tree.setNumber(L"Count", 0x1234);
    tree.set(L"Hosts", REG_MULTI_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0});
    tree.set(L"Key", REG_BINARY, {10, 255});
    tree.setText(L"Folder", L"C:\\Media", L"Server");
    tree.makeKey(L"Server\\Empty");
    test::ScratchFolder const folder;
    vrUtils::Registry::RegDumper const dumper(
        HKEY_CURRENT_USER, L"HKEY_CURRENT_USER\\" + tree.path());

    ASSERT_EQ(0, dumper.dumpRegistry(vr::Path::file(folder.file(L"dump"))));
    auto dumped = folder.read(L"dump");
    dumped.erase(std::remove(dumped.begin(), dumped.end(), '\r'), dumped.end());

    EXPECT_EQ(test::pageBlock("registry-dump.md", "```", "```"), dumped);
}
