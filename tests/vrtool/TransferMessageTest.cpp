#include "tools/vrtool/TransferMessage.h"

#include "tests/support/WideText.h"
#include "tools/vrtool/TransferDestination.h"
#include "tools/vrtool/TransferFailure.h"
#include "vrUtils/Instancing.h"
#include "vrUtils/Process.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

TransferMessage messageOf(std::wstring const& source) {
    return {
        transferServer(),
        vr::Path::file(source),
        vr::Path::file(L"\\\\server\\share\\a.wav"),
        vr::Path::file(L"\\\\server\\share\\PFR-INDEX\\a.mov"),
        1280,
        AudioFormat{48000, 24}};
}

std::wstring fileOf(std::wstring const& target) {
    return messageFile(vr::Path::file(target)).str();
}

} // namespace

TEST(VrtoolTransferMessage, GoesBesideTheTarget) {
    EXPECT_EQ(L"C:\\to\\messages\\a.wav.xml", fileOf(L"C:\\to\\a.wav"));
    EXPECT_EQ(
        L"\\\\server\\share\\day 1\\messages\\a.wav.xml",
        fileOf(L"\\\\server\\share\\day 1\\a.wav"));
}

TEST(VrtoolTransferMessage, KeepsTargetsApartThatDifferInTheirExtensions) {
    EXPECT_NE(fileOf(L"C:\\to\\a.wav"), fileOf(L"C:\\to\\a.aif"));
}

TEST(VrtoolTransferMessage, HasALegalName) {
    EXPECT_THAT(fileOf(L"C:\\to\\a?b.wav"), Not(HasSubstr(L"?")));
}

TEST(VrtoolTransferMessage, HasNoPlaceInAFolderWhoseNameIsTooLong) {
    auto const folder = L"C:\\" + std::wstring(250, L'f') + L'\\';

    try {
        fileOf(folder + L"a.wav");
        FAIL();
    } catch (TransferFailure const& failure) {
        EXPECT_EQ(L"the name is too long: \"" + folder + L"messages\"", failure.text());
    }
}

TEST(VrtoolTransferMessage, TellsAllThatIsKnownOfTheFile) {
    auto const server =
        test::utf8(vrUtils::Instancing::instanceHost(vrUtils::Process::GetComputerNameW(), 60774));

    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<transfer>\n"
        "  <server>" +
            server +
            "</server>\n"
            "  <source>C:\\from\\a.wav</source>\n"
            "  <target>\\\\server\\share\\a.wav</target>\n"
            "  <index>\\\\server\\share\\PFR-INDEX\\a.mov</index>\n"
            "  <bytes>1280</bytes>\n"
            "  <samplesPerSecond>48000</samplesPerSecond>\n"
            "  <bitsPerSample>24</bitsPerSample>\n"
            "</transfer>\n",
        messageText(messageOf(L"C:\\from\\a.wav")));
}

TEST(VrtoolTransferMessage, SaysNothingOfAFormatThatIsNotKnown) {
    auto message = messageOf(L"a");
    message.format.reset();

    EXPECT_THAT(messageText(message), Not(HasSubstr("Sample")));
}

TEST(VrtoolTransferMessage, IsXmlWhateverTheNames) {
    EXPECT_THAT(
        messageText(messageOf(L"a<b>&\x01\uffff\U0001F3AC\u00fc")),
        HasSubstr(
            "<source>a&lt;b&gt;&amp;\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x8E\xAC\xC3\xBC</source>"));
}

TEST(VrtoolTransferText, FitsUpToTheTerminator) {
    wchar_t array[260];

    putText(array, std::wstring(259, L'x'));

    EXPECT_EQ(std::wstring(259, L'x'), array);
    EXPECT_THROW(putText(array, std::wstring(260, L'x')), TransferFailure);
}
