#include "vrUtils/AssetManagement.h"

#include "tests/files/FailsWith.h"
#include "tests/media/Transfers.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LogRecorder.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

using test::add;
using test::put;
using test::transferOf;

namespace {

constexpr auto noName = L"GenerateLegalFilename failed as the source file name was empty";
constexpr std::uint32_t typeNamedBySource = 20;

std::wstring mam(TransferParams const& transfer, std::wstring const& prefix = {}) {
    return vrUtils::AssetManagement::CreateMAMMsgFileName(&transfer, prefix);
}

std::wstring metadata(
    TransferParams const& transfer, std::wstring const& prefix = {},
    std::wstring const& extension = {}) {
    return vrUtils::AssetManagement::CreateMetadataMsgFileName(&transfer, prefix, extension);
}

std::wstring inMedia(std::wstring const& name) { return LR"(\\server\share\Media\)" + name; }

// A transfer of many files, whose `fileName` is another one.
TransferParams transferOfMany(std::vector<vr::Path> const& files) {
    auto transfer = transferOf(L"other.mxf");
    for (auto const& file : files)
        add(transfer, file);
    return transfer;
}

vr::Path file(std::wstring const& text) { return vr::Path::file(text); }

// How both messages of a one-file transfer are called.
struct Naming {
    char const* name;
    std::wstring fileName;
    std::wstring message;
};

void PrintTo(Naming const& naming, std::ostream* stream) {
    *stream << testing::PrintToString(naming.fileName);
}

class MessageNames : public testing::TestWithParam<Naming> {};

} // namespace

TEST_P(MessageNames, ComeFromTheFile) {
    auto const transfer = transferOf(GetParam().fileName);

    EXPECT_EQ(inMedia(GetParam().message), mam(transfer));
    EXPECT_EQ(inMedia(GetParam().message), metadata(transfer));
}

TEST_P(MessageNames, FollowAPrefixDirectly) {
    auto const transfer = transferOf(GetParam().fileName);

    EXPECT_EQ(inMedia(L"done_" + GetParam().message), mam(transfer, L"done_"));
    EXPECT_EQ(inMedia(L"done_" + GetParam().message), metadata(transfer, L"done_"));
}

TEST_P(MessageNames, OfManyFilesComeFromTheFirst) {
    auto const transfer = transferOfMany({file(GetParam().fileName), file(L"second.wav")});

    EXPECT_EQ(inMedia(GetParam().message), mam(transfer));
}

INSTANTIATE_TEST_SUITE_P(
    AssetManagement, MessageNames,
    testing::Values(
        Naming{"Plain", L"clip1.mxf", L"clip1.xml"}, Naming{"NoExtension", L"clip1", L"clip1.xml"},
        Naming{"TwoDots", L"a.b.mxf", L"a.b.xml"},
        Naming{"ManyDots", L"..a...b.mxf", L"..a...b.xml"},
        Naming{"DotAtTheEnd", L"clip.", L"clip..xml"},
        Naming{"XmlItself", L"clip.xml", L"clip.xml"},
        Naming{"Folders", L"Day 1/Take 2\\clip.mxf", L"clip.xml"},
        Naming{"Drive", L"C:\\Media\\clip.mxf", L"clip.xml"},
        Naming{"DriveWithoutASeparator", L"C:clip.mxf", L"clip.xml"},
        Naming{"Share", LR"(\\other\share\clip.mxf)", L"clip.xml"},
        Naming{"DotsInFolders", L"day.1\\clip", L"clip.xml"},
        Naming{"Stream", L"clip.mxf:data", L"clip.xml"},
        Naming{"StreamWithoutAnExtension", L"clip:data", L"clip.xml"},
        Naming{"ForbiddenCharacters", L"a*b?c<d>e|f\"g.mxf", L"a-b-c-d-e-f-g.xml"},
        Naming{"ControlCharacters", L"a\x01\x1F\tb.mxf", L"a---b.xml"},
        Naming{"TildeInFront", L"~clip~.mxf", L"-clip~.xml"}, Naming{"TildeAlone", L"~", L"-.xml"},
        Naming{"Blanks", L" a b .mxf", L" a b .xml"},
        Naming{"Umlauts", L"K\u00F6ln \u00FCber Nacht.mxf", L"K\u00F6ln \u00FCber Nacht.xml"},
        Naming{"Emoji", L"\xD83C\xDFAC.mxf", L"\xD83C\xDFAC.xml"},
        Naming{"NoText", L"\xDFAC\xD83C\xFFFF\x7F.mxf", L"\xDFAC\xD83C\xFFFF\x7F.xml"},
        Naming{"Longest", std::wstring(255, L'n') + L".mxf", std::wstring(255, L'n') + L".xml"},
        Naming{
            "LongestWithoutAnExtension", std::wstring(259, L'n'),
            std::wstring(259, L'n') + L".xml"}),
    [](auto const& test) { return test.param.name; });

TEST(AssetManagement, NothingIsLogged) {
    test::LogRecorder const log;
    auto const transfer = transferOf(L"clip1.mxf");

    mam(transfer);
    metadata(transfer);
    EXPECT_THROW(metadata(transferOf(L"")), vrException);

    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST(AssetManagement, FolderWithSeparatorsAtItsEndGainsNone) {
    auto transfer = transferOf(L"clip1.mxf");
    put(transfer.folder, L"/share/Media/");

    EXPECT_EQ(inMedia(L"clip1.xml"), mam(transfer));
    EXPECT_EQ(inMedia(L"clip1.xml"), metadata(transfer));
}

TEST(AssetManagement, HostIsCutOfSlashesAndBlanks) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.host = L"\\\\ server /";

    EXPECT_EQ(inMedia(L"clip1.xml"), mam(transfer));
    EXPECT_EQ(inMedia(L"clip1.xml"), metadata(transfer));
}

TEST(AssetManagement, WithoutAHostTheFolderStandsForItself) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.host.clear();
    put(transfer.folder, L"C:/Out");

    EXPECT_EQ(L"C:\\Out\\clip1.xml", mam(transfer));
    EXPECT_EQ(L"C:\\Out\\clip1.xml", metadata(transfer));
}

TEST(AssetManagement, WithoutHostAndFolderTheNameStandsAlone) {
    TransferParams transfer;
    put(transfer.fileName, L"clip1.mxf");

    EXPECT_EQ(L"clip1.xml", mam(transfer));
    EXPECT_EQ(L"done_clip1.xml", metadata(transfer, L"done_"));
}

TEST(AssetManagement, WithoutAFolderTheNameStandsOnTheHost) {
    auto transfer = transferOf(L"clip1.mxf");
    put(transfer.folder, L"");

    EXPECT_EQ(LR"(\\server\clip1.xml)", mam(transfer));
    EXPECT_EQ(LR"(\\server\clip1.xml)", metadata(transfer));
}

TEST(AssetManagement, LongestTextsAreTaken) {
    TransferParams transfer;
    transfer.host.assign(1000, L'h');
    put(transfer.folder, std::wstring(259, L'f'));
    put(transfer.relativeRoot, std::wstring(259, L'r'));
    put(transfer.fileName, std::wstring(259, L'n'));
    auto const folder = L"\\\\" + transfer.host + L'\\' + transfer.folder + L'\\';
    auto const name = std::wstring(1000, L'p') + transfer.fileName + L".xml";

    EXPECT_EQ(folder + name, mam(transfer, std::wstring(1000, L'p')));
    EXPECT_EQ(folder + name, metadata(transfer, std::wstring(1000, L'p')));
}

// Prefixes

TEST(AssetManagement, PrefixMayEndInASeparator) {
    auto const transfer = transferOf(L"clip1.mxf");

    for (auto const* prefix : {L"out\\", L"out/", L"\\out\\", L"/out/"}) {
        EXPECT_EQ(inMedia(L"out\\clip1.xml"), mam(transfer, prefix)) << prefix;
        EXPECT_EQ(inMedia(L"out\\clip1.xml"), metadata(transfer, prefix)) << prefix;
    }
}

TEST(AssetManagement, PrefixMayHoldASeparator) {
    auto const transfer = transferOf(L"clip1.mxf");

    EXPECT_EQ(inMedia(L"out\\done_clip1.xml"), mam(transfer, L"out/done_"));
    EXPECT_EQ(inMedia(L"out\\done_clip1.xml"), metadata(transfer, L"out/done_"));
}

TEST(AssetManagement, PrefixOfASeparatorIsNone) {
    auto const transfer = transferOf(L"clip1.mxf");

    EXPECT_EQ(inMedia(L"clip1.xml"), mam(transfer, L"/"));
    EXPECT_EQ(inMedia(L"clip1.xml"), metadata(transfer, L"\\"));
}

TEST(AssetManagement, PrefixIsNotMadeLegal) {
    auto const transfer = transferOf(L"~a.mxf");

    EXPECT_EQ(inMedia(L"~*?-a.xml"), mam(transfer, L"~*?"));
    EXPECT_EQ(inMedia(L"~*?-a.xml"), metadata(transfer, L"~*?"));
}

// The files of a transfer

TEST(AssetManagement, FirstOfTheFilesNamesTheMamMessage) {
    auto const first = file(L"first.mxf");
    auto const absolute = file(L"C:\\Media\\absolute.mxf");
    std::wstring const name = inMedia(L"first.xml");

    EXPECT_EQ(name, mam(transferOfMany({first})));
    EXPECT_EQ(name, mam(transferOfMany({first, file(L"second.wav")})));
    EXPECT_EQ(name, mam(transferOfMany({first, absolute})));
    EXPECT_EQ(inMedia(L"absolute.xml"), mam(transferOfMany({absolute, first})));
}

TEST(AssetManagement, FilesPlayNoPartInTheMetadataMessage) {
    EXPECT_EQ(inMedia(L"other.xml"), metadata(transferOfMany({file(L"first.mxf")})));
}

TEST(AssetManagement, FoldersOfTheFilesPlayNoPart) {
    auto transfer = transferOfMany({file(L"Day.1\\first.mxf"), file(LR"(\\a\b\second.mxf)")});
    put(transfer.relativeRoot, L"C:\\Root\\name.ext");

    EXPECT_EQ(inMedia(L"first.xml"), mam(transfer));
    transfer.files.pop_back();
    EXPECT_EQ(inMedia(L"first.xml"), mam(transfer));
}

// What a name is empty of is found in the folder before it, where it is taken under one.
TEST(AssetManagement, EmptyFirstFileIsNamedByTheRelativeRoot) {
    auto transfer = transferOfMany({file(L""), file(L"second.mxf")});
    put(transfer.relativeRoot, L"Clips\\Day 1.d");

    EXPECT_EQ(inMedia(L"Day 1.xml"), mam(transfer));
}

TEST(AssetManagement, EmptyFirstFileAmongAbsoluteOnesHasNoName) {
    auto transfer = transferOfMany({file(L""), file(L"C:\\second.mxf")});
    put(transfer.relativeRoot, L"Clips\\Day 1.d");

    EXPECT_EQ(inMedia(L".xml"), mam(transfer));
}

TEST(AssetManagement, FirstFileThatIsAFolderKeepsItsDots) {
    EXPECT_EQ(inMedia(L"Day.1.xml"), mam(transferOfMany({vr::Path::folder(L"Day.1")})));
    EXPECT_EQ(inMedia(L".xml"), mam(transferOfMany({vr::Path::folder(L"Day.1\\")})));
}

TEST(AssetManagement, FileNameIsTakenUnderTheFolderOrTheRoot) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.host.clear();
    for (auto const* folder : {L"relative.d", L"C:\\absolute.d", LR"(\\other\share\absolute.d)"})
        for (auto const* root : {L"", L"relative.d", L"D:\\absolute.d"}) {
            put(transfer.folder, folder);
            put(transfer.relativeRoot, root);

            EXPECT_EQ(std::wstring(folder) + L"\\clip1.xml", mam(transfer)) << root;
        }
}

TEST(AssetManagement, TransferIsOnlyRead) {
    auto transfer = transferOfMany({file(L"first.mxf"), file(L"C:\\second.mxf")});
    mam(transfer);
    metadata(transfer);

    // A parse that a call had left behind in a path would not have to be made now.
    for (auto const& entry : transfer.files) {
        test::AllocationCounter const counter;
        entry.Name().isAbsolute();
        EXPECT_GT(counter.allocations(), 0u);
    }
    EXPECT_EQ(2u, transfer.files.size());
    EXPECT_EQ(L"other.mxf", std::wstring(transfer.fileName));
}

TEST(AssetManagement, StormOfThreadsReadsOneTransfer) {
    constexpr std::size_t threadCount = 8;
    for (int transfers = 0; transfers < 20; ++transfers) {
        std::vector<vr::Path> files(20, file(L"Day 1\\first.mxf"));
        files.push_back(file(L"C:\\Media\\last.mxf"));
        auto const transfer = transferOfMany(files);
        std::atomic<std::size_t> ready{0};
        std::array<int, threadCount> wrong{};
        std::vector<std::thread> threads;
        for (auto& count : wrong)
            threads.emplace_back([&] {
                for (++ready; ready < threadCount;)
                    std::this_thread::yield();
                for (int call = 0; call < 10; ++call) {
                    count += mam(transfer) != inMedia(L"first.xml");
                    count += metadata(transfer) != inMedia(L"other.xml");
                }
            });
        for (auto& thread : threads)
            thread.join();

        ASSERT_EQ((std::array<int, threadCount>{}), wrong);
    }
}

// Names that are empty

TEST(AssetManagement, MamMessageOfNoNameIsTheExtension) {
    for (auto const* fileName : {L"", L".hid", L"Day 1\\", L"/"})
        EXPECT_EQ(inMedia(L".xml"), mam(transferOf(fileName))) << fileName;
    EXPECT_EQ(inMedia(L"done_.xml"), mam(transferOf(L""), L"done_"));
}

TEST(AssetManagement, MetadataMessageNeedsAName) {
    for (auto const* fileName : {L"", L".hid", L"Day 1\\", L"/"})
        EXPECT_THAT([&] { metadata(transferOf(fileName), L"done_"); }, FailsWith(noName))
            << fileName;
}

TEST(AssetManagement, EmptyTransferHasAMamMessage) {
    TransferParams transfer;
    EXPECT_EQ(L".xml", mam(transfer));
    EXPECT_THAT([&] { metadata(transfer); }, FailsWith(noName));

    put(transfer.folder, L"C:\\Media\\Day 1");
    EXPECT_EQ(L"C:\\Media\\Day 1\\.xml", mam(transfer));
}

// The metadata message

TEST(AssetManagement, MetadataFolderStandsWithoutTheHost) {
    auto transfer = transferOf(L"clip1.mxf");
    put(transfer.metadataFolder, L"D:/Meta");

    EXPECT_EQ(L"D:\\Meta\\clip1.xml", metadata(transfer));
    EXPECT_EQ(L"D:\\Meta\\done_clip1.xml", metadata(transfer, L"done_"));
    EXPECT_EQ(inMedia(L"clip1.xml"), mam(transfer));
}

TEST(AssetManagement, MetadataFolderGainsNoSecondSeparator) {
    auto transfer = transferOf(L"clip1.mxf");
    for (auto const* folder : {L"D:\\Meta\\", L"D:/Meta/"}) {
        put(transfer.metadataFolder, folder);
        EXPECT_EQ(L"D:\\Meta\\clip1.xml", metadata(transfer));
    }

    put(transfer.metadataFolder, L"D:\\Meta\\\\");
    EXPECT_EQ(L"D:\\Meta\\\\clip1.xml", metadata(transfer));
}

TEST(AssetManagement, MetadataFolderMayBeAnyText) {
    auto transfer = transferOf(L"clip1.mxf");
    std::array<std::pair<std::wstring, std::wstring>, 5> const folders{
        {{L"\\", L"\\"},
         {L" ", L" \\"},
         {L"meta", L"meta\\"},
         {LR"(\\other\share)", L"\\\\other\\share\\"},
         {std::wstring(259, L'm'), std::wstring(259, L'm') + L'\\'}}};

    for (auto const& [folder, beginning] : folders) {
        put(transfer.metadataFolder, folder);
        EXPECT_EQ(beginning + L"clip1.xml", metadata(transfer));
    }
}

TEST(AssetManagement, ExtensionIsAddedAsItIs) {
    auto const transfer = transferOf(L"clip1.mxf");

    EXPECT_EQ(inMedia(L"clip1.meta"), metadata(transfer, {}, L".meta"));
    EXPECT_EQ(inMedia(L"clip1xml"), metadata(transfer, {}, L"xml"));
    EXPECT_EQ(inMedia(L"clip1.a/b:*?~"), metadata(transfer, {}, L".a/b:*?~"));
    EXPECT_EQ(inMedia(L"done_clip1 "), metadata(transfer, L"done_", L" "));
}

TEST(AssetManagement, SourceNameIsTakenWholeByItsType) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.type = typeNamedBySource;
    put(transfer.sourceName, L"Evening.News v1.2");

    EXPECT_EQ(inMedia(L"Evening.News v1.2.xml"), metadata(transfer));
    EXPECT_EQ(inMedia(L"done_Evening.News v1.2.meta"), metadata(transfer, L"done_", L".meta"));
    EXPECT_EQ(inMedia(L"clip1.xml"), mam(transfer));
}

TEST(AssetManagement, SourceNameIsMadeLegalWithItsSeparators) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.type = typeNamedBySource;
    put(transfer.sourceName, L"~C:\\News/a.b?.mxf");

    EXPECT_EQ(inMedia(L"-C--News-a.b-.mxf.xml"), metadata(transfer));
}

TEST(AssetManagement, SourceNameThatIsEmptyIsNoName) {
    auto transfer = transferOf(L"clip1.mxf");
    transfer.type = typeNamedBySource;

    EXPECT_THAT([&] { metadata(transfer); }, FailsWith(noName));
}

TEST(AssetManagement, LongestSourceNameIsTaken) {
    auto transfer = transferOf(L"");
    transfer.type = typeNamedBySource;
    put(transfer.sourceName, std::wstring(259, L'.'));

    EXPECT_EQ(inMedia(std::wstring(259, L'.') + L".xml"), metadata(transfer));
}

TEST(AssetManagement, SourceNamePlaysNoPartForOtherTypes) {
    auto transfer = transferOf(L"clip1.mxf");
    put(transfer.sourceName, L"Evening News");

    for (std::uint32_t const type : {0u, 19u, 21u, 20u + 256u, 20u + 0x10000u, 0xFFFFFFFFu}) {
        transfer.type = type;
        EXPECT_EQ(inMedia(L"clip1.xml"), metadata(transfer)) << type;
    }
}

TEST(AssetManagement, FailedAllocationsComeOutAndLoseNothing) {
    auto const transfer = transferOfMany({file(L"Day 1\\a long name of a file.mxf")});

    EXPECT_GT(test::failEachAllocation([&] { mam(transfer, L"done_"); }), 0u);
    EXPECT_GT(test::failEachAllocation([&] { metadata(transfer, L"done_"); }), 0u);
}
