#include "vrUtils/vrException.h"

#include <gtest/gtest.h>

#include <exception>
#include <type_traits>

TEST(vrException, DefaultBuiltIsEmptyNotAbsent) {
    vrException const failure;

    EXPECT_EQ(0u, failure.code());
    EXPECT_EQ(L"", failure.file());
    EXPECT_EQ(0u, failure.line());
    EXPECT_EQ(L"", failure.message());
}

TEST(vrException, FullFormSetsAllFourFields) {
    vrException const failure("Process", 17, L"OpenProcess failed", 0x80004005);

    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Process", failure.file());
    EXPECT_EQ(17u, failure.line());
    EXPECT_EQ(L"OpenProcess failed", failure.message());
}

TEST(vrException, TwoArgumentFormBelongsToTheFileLayer) {
    vrException const failure(42, L"Unable to open file C:\\a");

    EXPECT_EQ(0x80004005u, failure.code());
    EXPECT_EQ(L"Files", failure.file());
    EXPECT_EQ(42u, failure.line());
    EXPECT_EQ(L"Unable to open file C:\\a", failure.message());
}

TEST(vrException, SourceNameIsWidenedThroughTheAnsiCodePage) {
    vrException const failure("Zul\x84ssig \x80", 1, L"", 0);

    EXPECT_EQ(L"Zul\u201Essig \u20AC", failure.file());
}

TEST(vrException, CopyTakesAllFieldsAndIsIndependent) {
    vrException const failure("Files", 3, L"text", 5);

    vrException const copy(failure);
    vrException assigned;
    assigned = failure;

    for (auto const& other : {copy, assigned}) {
        EXPECT_EQ(5u, other.code());
        EXPECT_EQ(L"Files", other.file());
        EXPECT_EQ(3u, other.line());
        EXPECT_EQ(L"text", other.message());
        EXPECT_NE(failure.message().data(), other.message().data());
    }
}

TEST(vrException, KeepsZeroCharactersOfTheMessage) {
    std::wstring const message(L"a\0b", 3);

    EXPECT_EQ(message, vrException("Files", 1, message, 0).message());
}

TEST(vrException, HasNoBaseAndOnlyTheDestructorIsVirtual) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, vrException>));
    EXPECT_TRUE(std::has_virtual_destructor_v<vrException>);
    // The virtual table pointer and the four fields, nothing more.
    EXPECT_EQ(
        sizeof(void*) + 2 * sizeof(std::uint64_t) + 2 * sizeof(std::wstring), sizeof(vrException));
}

TEST(vrException, AccessorsGiveReferencesAndThrowNothing) {
    vrException const failure;

    EXPECT_TRUE((std::is_same_v<std::wstring const&, decltype(failure.file())>));
    EXPECT_TRUE((std::is_same_v<std::wstring const&, decltype(failure.message())>));
    EXPECT_TRUE(noexcept(failure.code())&& noexcept(failure.file()));
    EXPECT_TRUE(noexcept(failure.line())&& noexcept(failure.message()));
}
