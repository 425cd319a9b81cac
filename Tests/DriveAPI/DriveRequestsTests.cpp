#include "DriveAPI/DriveRequests.h"

#include <gtest/gtest.h>

namespace marrowbox::test {

TEST(DriveRequests, seesThatAPageIsTheLast) {
    for (const char* body :
         {R"({"files": []})", R"({"incompleteSearch": false, "files": []})",
          R"({"incompleteSearch" :false,"files":[{"id":"a"}]})", R"({"files":[],"incompleteSearch":false})"})
        EXPECT_TRUE(DriveRequests::isSurelyLast(body)) << body;
}

TEST(DriveRequests, leavesToDecodingWhatALookCannotTell) {
    for (const char* body :
         {R"({"nextPageToken": "t", "files": []})",
          R"({"files": [{"name": "nextPageToken"}], "nextPageToken": "t"})",
          R"({"incompleteSearch": true, "files": []})", R"({"incompleteSearch": null, "files": []})",
          R"({"nextPageT\u006fken": "t", "files": []})", R"({"files": [{"name": "a \"quoted\" name"}]})",
          R"({"incompleteSearch": false, "incompleteSearch": true, "files": []})", R"({"incompleteSearch")"})
        EXPECT_FALSE(DriveRequests::isSurelyLast(body)) << body;
}

} // namespace marrowbox::test
