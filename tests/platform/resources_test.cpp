#include "platform/host/resources.h"

#include <gtest/gtest.h>

namespace qx {
namespace {

TEST(Resources, TheSixMenuIconsAre16By16Bitmaps) {
    for (const char* name : {"MENU_ICON_170100", "MENU_ICON_170101", "MENU_ICON_170102", "MENU_ICON_170200",
                             "MENU_ICON_170201", "MENU_ICON_170202"}) {
        PicturePtr picture = loadBitmapResource(name);
        ASSERT_NE(picture, nullptr) << name;
        EXPECT_EQ(picture->Width, 16);
        EXPECT_EQ(picture->Height, 16);
        EXPECT_EQ(picture->Pixels.size(), 16u * 16u * 3u);
    }
}

TEST(Resources, ThereIsNoLadderBitmapNorAMenuIconForMethodsThreeToFive) {
    EXPECT_EQ(loadBitmapResource("LADDER_IMAGE_170101"), nullptr);
    EXPECT_EQ(loadBitmapResource("MENU_ICON_170103"), nullptr);
    EXPECT_EQ(findResource("MENU_ICON_170105").Data, nullptr);
}

}  // namespace
}  // namespace qx
