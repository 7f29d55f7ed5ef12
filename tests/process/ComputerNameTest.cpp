// Changes the name of the computer, and puts it back.

#include "tests/support/ScratchComputerName.h"
#include "vrUtils/Process/Identity.h"

#include <gtest/gtest.h>

using test::ScratchComputerName;

TEST(ComputerName, OfFifteenCharactersIsTold) {
    ScratchComputerName const name(L"FIFTEEN-LETTERS");

    EXPECT_EQ(L"FIFTEEN-LETTERS", vrUtils::Process::GetComputerNameW());
}

TEST(ComputerName, OfSixteenCharactersIsEmpty) {
    ScratchComputerName const name(L"SIXTEEN-LETTERS-");

    EXPECT_EQ(L"", vrUtils::Process::GetComputerNameW());
}

TEST(ComputerName, IsAskedForAtEachCall) {
    ScratchComputerName const first(L"FIRST");
    EXPECT_EQ(L"FIRST", vrUtils::Process::GetComputerNameW());

    ScratchComputerName const second(L"SECOND");

    EXPECT_EQ(L"SECOND", vrUtils::Process::GetComputerNameW());
}
