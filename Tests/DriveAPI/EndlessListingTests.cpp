// A service that never comes to the end of a listing.
#include "DriveAPI/DriveAPI.h"
#include "DriveAPI/PageSequence.h"

#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"
#include "Support/Coroutine.h"
#include "Support/RecordedWaits.h"
#include "Support/ScratchFolder.h"
#include "Support/Thrown.h"

#include <boost/asio/thread_pool.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

using testing::SizeIs;

constexpr auto incomplete = "Google returned an incomplete folder listing. Please try again.";

/// Gives the page with this number, counted from 1.
using Pages = std::function<std::string(int number)>;

std::string fileText(const std::string& id) {
    return R"({"id":")" + id + R"(","name":")" + id + R"(","mimeType":"text/plain","version":"1"})";
}

std::string filesPage(const std::string& items, const std::string& token) {
    return R"({"nextPageToken":")" + token + R"(","files":[)" + items + "]}";
}

/// A service that knows one folder, "top", and answers every request for a page as the test says.
class EndlessListing : public testing::Test {
  protected:
    EndlessListing() {
        credentials_.save(
            encodeJSON(OAuthToken{"access", "refresh", systemClock()() + 3600, ""}, JSONStyle::compact),
            "google.1");
    }
    std::vector<DriveFile> children(std::stop_token stop = {}) {
        return await(api_.children(top_, DriveItems::all, std::move(stop)));
    }
    void expectEveryListingIsRefused() {
        asked_ = 0;
        EXPECT_EQ(thrown<BackupError>([&] { children(); }), incomplete);
        asked_ = 0;
        EXPECT_EQ(thrown<BackupError>([&] { await(api_.folders(top_, {})); }), incomplete);
        asked_ = 0;
        EXPECT_EQ(thrown<BackupError>([&] { await(api_.inventory(top_, {})); }), incomplete);
    }

    const DriveLocation top_{"top", "Top", std::nullopt};
    Pages pages_;
    int asked_ = 0; ///< Requests for a page.

  private:
    static asio::awaitable<HTTPResponse>
    answer(EndlessListing& self, std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        throwIfCancelled(stop);
        HTTPResponse response;
        response.status = 200;
        if (request->url.find("/files/top?") != std::string::npos)
            response.body = R"({"id":"top","name":"Top","mimeType":"application/vnd.google-apps.folder"})";
        else
            response.body = self.pages_(++self.asked_);
        co_return response;
    }
    HTTPSend service() {
        return [this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
            return answer(*this, std::move(request), std::move(stop));
        };
    }

    ScratchFolder folder_;
    AppCredentials credentials_{folder_ / "Credentials"};
    asio::thread_pool pool_{1};
    RecordedWaits waits_;

  protected:
    DriveAPI api_{std::make_shared<GoogleAuth>(OAuthClient{"client", {}, {}}, HTTP(service(), waits_.wait()),
                                               credentials_, systemClock(), pool_.get_executor()),
                  "1"};
};

} // namespace

TEST_F(EndlessListing, thatRepeatsOneTokenIsRefused) {
    pages_ = [](int number) { return filesPage(fileText("f" + std::to_string(number)), "again"); };
    expectEveryListingIsRefused();
    EXPECT_EQ(asked_, 2);
}

TEST_F(EndlessListing, thatGoesRoundInSeveralTokensIsRefused) {
    pages_ = [](int number) {
        return filesPage(fileText("f" + std::to_string(number)), "token" + std::to_string(number % 3));
    };
    expectEveryListingIsRefused();
    EXPECT_EQ(asked_, 4);
}

TEST_F(EndlessListing, thatGivesTheSamePageUnderEverNewTokensIsRefused) {
    pages_ = [](int number) {
        return filesPage(fileText("same") + "," + fileText("f" + std::to_string(number)),
                         "token" + std::to_string(number));
    };
    expectEveryListingIsRefused();
    EXPECT_EQ(asked_, 2);
}

TEST_F(EndlessListing, ofPagesWithNothingOnThemIsRefused) {
    pages_ = [](int number) { return filesPage("", "token" + std::to_string(number)); };
    expectEveryListingIsRefused();
    EXPECT_EQ(asked_, PageSequence::emptyPagesInARow + 1);
}

TEST_F(EndlessListing, ofSharedDrivesIsRefused) {
    pages_ = [](int number) {
        return R"({"nextPageToken":"again","drives":[{"id":"d)" + std::to_string(number) +
               R"(","name":"D"}]})";
    };
    EXPECT_EQ(thrown<BackupError>([&] { await(api_.roots({})); }), incomplete);
    EXPECT_EQ(asked_, 2);

    asked_ = 0;
    pages_ = [](int number) {
        return R"({"nextPageToken":"t)" + std::to_string(number) + R"(","drives":[{"id":"d","name":"D"}]})";
    };
    EXPECT_EQ(thrown<BackupError>([&] { await(api_.roots({})); }), incomplete);
    EXPECT_EQ(asked_, 2);
}

TEST_F(EndlessListing, ofEverNewItemsGoesOnUntilItIsCancelled) {
    std::stop_source stop;
    pages_ = [&](int number) {
        if (number == 500)
            stop.request_stop();
        return filesPage(fileText("f" + std::to_string(number)), "token" + std::to_string(number));
    };
    EXPECT_THROW(children(stop.get_token()), CancellationError);
    EXPECT_EQ(asked_, 500);

    stop = {};
    asked_ = 0;
    EXPECT_THROW(await(api_.inventory(top_, stop.get_token())), CancellationError);
    EXPECT_EQ(asked_, 500);
}

TEST_F(EndlessListing, isNotWhatAnEmptyPageInBetweenMeans) {
    pages_ = [](int number) {
        const std::string item = number % 10 == 0 ? fileText("f" + std::to_string(number)) : "";
        return number == 2000 ? "{\"files\":[" + item + "]}"
                              : filesPage(item, "token" + std::to_string(number));
    };
    EXPECT_THAT(children(), SizeIs(200));
    EXPECT_EQ(asked_, 2000);
}

} // namespace marrowbox::test
