#include "vrUtils/Files/Exceptions.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace vrUtils::Files;

static_assert(std::is_base_of_v<vrException, LockFileException>);
static_assert(!std::is_base_of_v<vrException, vrInvalidIndexPathException>);
static_assert(!std::is_polymorphic_v<vrInvalidIndexPathException>);
static_assert(sizeof(vrInvalidIndexPathException) == sizeof(vr::Path), "the path and nothing else");

TEST(LockFileException, NamesThePathInNormalForm) {
    LockFileException const failure(vr::Path::file(L"C:/Media//a.lck"));

    EXPECT_EQ(L"Unable to lock C:\\Media\\a.lck", failure.message());
    EXPECT_EQ(0x80E0609Eu, failure.code());
}

TEST(LockFileException, HasNoPlace) {
    LockFileException const failure(vr::Path::file(L"C:\\a.lck"));

    EXPECT_EQ(L"", failure.file());
    EXPECT_EQ(0u, failure.line());
}

TEST(LockFileException, IsCaughtAsTheBase) {
    try {
        throw LockFileException(vr::Path::file(L"C:\\a.lck"));
    } catch (vrException const& failure) {
        EXPECT_EQ(L"Unable to lock C:\\a.lck", failure.message());
        return;
    }
    ADD_FAILURE() << "nothing was caught";
}

TEST(LockFileException, AssignmentCopiesTheFields) {
    LockFileException failure(vr::Path::file(L"C:\\a.lck"));
    LockFileException const other(vr::Path::file(L"C:\\b.lck"));

    failure = other;

    EXPECT_EQ(L"Unable to lock C:\\b.lck", failure.message());
    EXPECT_EQ(0x80E0609Eu, failure.code());
}

TEST(LockFileException, OutlivesThePathAndTheSource) {
    auto failure = [] {
        LockFileException const source(vr::Path::file(L"C:\\a.lck"));
        return LockFileException(source);
    }();

    EXPECT_EQ(L"Unable to lock C:\\a.lck", failure.message());
}

TEST(InvalidIndexPathException, IsThePath) {
    vrInvalidIndexPathException const failure(vr::Path::folder(L"C:\\PFR-INDEX\\a.b"));

    auto path = failure.path();

    EXPECT_EQ(L"C:\\PFR-INDEX\\a.b", path.str());
    EXPECT_EQ(L"a.b", path.components().fileName());
}

TEST(InvalidIndexPathException, IsCaughtByItsOwnHandlerAlone) {
    bool caught = false;
    try {
        throw vrInvalidIndexPathException(vr::Path::file(L"C:\\a"));
    } catch (vrException const&) {
    } catch (vrInvalidIndexPathException const& failure) {
        caught = failure.path() == vr::Path::file(L"C:\\a");
    }

    EXPECT_TRUE(caught);
}
