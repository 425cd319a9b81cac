#include "Marrowbox/SetupViews/Destination.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(Destination, liesInGoogleDriveWhereGoogleOrTheDesktopShowsIt) {
    EXPECT_TRUE(liesInGoogleDrive("/Users/anna/Library/CloudStorage/GoogleDrive-anna@example.org"));
    EXPECT_TRUE(
        liesInGoogleDrive("/Users/anna/Library/CloudStorage/GoogleDrive-anna@example.org/My Drive/A"));
    EXPECT_TRUE(liesInGoogleDrive("/run/user/1000/gvfs/google-drive:host=example.org,user=anna/Letters"));
}

TEST(Destination, mayLieAnywhereElse) {
    EXPECT_FALSE(liesInGoogleDrive("/home/anna/Google Drive"));
    EXPECT_FALSE(liesInGoogleDrive("/Users/anna/Library/CloudStorage/OtherDrive"));
    EXPECT_FALSE(liesInGoogleDrive("/run/user/1000/gvfs/smb-share:server=nas,share=backup"));
    EXPECT_FALSE(liesInGoogleDrive("/media/anna/google-drive:copy"));
}

} // namespace marrowbox
