#include "vrUtils/Path.h"

#include <gtest/gtest.h>

TEST(Path, NormalFormOfAFileOnADrive) {
    auto path = vr::Path::file(L"C:/Media/clip.mxf");

    EXPECT_EQ(L"C:\\Media\\clip.mxf", path.str());
}
