// What the exception classes of the areas carry.

#include "vrUtils/vrUtils.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace vrUtils;

namespace {

void expectFields(
    vrException const& failure, std::uint32_t code, std::wstring const& file, std::uint32_t line,
    std::wstring const& message) {
    EXPECT_EQ(code, failure.code());
    EXPECT_EQ(file, failure.file());
    EXPECT_EQ(line, failure.line());
    EXPECT_EQ(message, failure.message());
}

// For the classes that add nothing to their base.
template <typename Exception>
void expectFieldsOfItsBase() {
    vrException const base("Unit", 7, L"text", 0x81A06003);

    expectFields(Exception(base), 0x81A06003, L"Unit", 7, L"text");
    expectFields(Exception("Unit", 8, L"more", 5), 5, L"Unit", 8, L"more");
    expectFields(Exception(), 0, L"", 0, L"");
}

} // namespace

TEST(ExceptionFields, ClassesThatAddNothingCarryTheFieldsOfTheirBase) {
    expectFieldsOfItsBase<vrUnsetValueException>();
    expectFieldsOfItsBase<Registry::vrRegistryAccessException>();
    expectFieldsOfItsBase<Registry::vrRegistryValueMissingException>();
    expectFieldsOfItsBase<TcpComms::vrSocketException>();
    expectFieldsOfItsBase<KeyValue::KeyValueNotPresentException>();
    expectFieldsOfItsBase<KeyValue::KeyValueWrongTypeException>();
}

TEST(ExceptionFields, LockFileNamesTheNormalFormOfItsPathAndNoPlace) {
    Files::LockFileException const failure(vr::Path::file(L"C:/Media//a.mxf"));

    expectFields(failure, 0x80E0609E, L"", 0, L"Unable to lock C:\\Media\\a.mxf");
}

TEST(ExceptionFields, LockFileAssignmentCopiesTheFourFields) {
    Files::LockFileException const failure(vr::Path::file(L"C:\\a"));
    Files::LockFileException assigned(vr::Path::file(L"C:\\b"));

    assigned = failure;

    expectFields(assigned, 0x80E0609E, L"", 0, L"Unable to lock C:\\a");
}

TEST(ExceptionFields, InvalidIndexPathIsItsPathAndNothingElse) {
    Files::vrInvalidIndexPathException const failure(vr::Path::file(L"C:\\a\\b.mxf"));

    EXPECT_EQ(L"C:\\a\\b.mxf", failure.path().components().wholePath());
    EXPECT_EQ(sizeof(vr::Path), sizeof failure);
    EXPECT_FALSE((std::is_base_of_v<vrException, Files::vrInvalidIndexPathException>));
}

TEST(ExceptionFields, BadCommandLineCarriesItsTextAndNoPlace) {
    CmdLineProcessor::BadCommandLineException const failure(L"Mismatched quotes in Command Line");

    expectFields(failure, 0x80E0603D, L"", 0, L"Mismatched quotes in Command Line");
}

TEST(ExceptionFields, StorageClassesArePlainCopyableValues) {
    Storage::vrCreateFolderException const failure(5, L"C:\\Media");
    Storage::vrCreateFolderException assigned(0, L"");

    assigned = failure;

    EXPECT_EQ(5u, assigned.error());
    EXPECT_EQ(L"C:\\Media", assigned.text());
    EXPECT_FALSE(std::is_polymorphic_v<Storage::vrStorageException>);
    EXPECT_FALSE(std::is_polymorphic_v<Storage::vrCreateFolderException>);
    EXPECT_FALSE((std::is_base_of_v<vrException, Storage::vrStorageException>));
}

TEST(ExceptionFields, HostClassesAreEmpty) {
    EXPECT_TRUE(std::is_empty_v<Host::vrHostException>);
    EXPECT_TRUE(std::is_empty_v<Host::vrFailedToGetHostNameException>);
    EXPECT_FALSE((std::is_base_of_v<vrException, Host::vrHostException>));
}
