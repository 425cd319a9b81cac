#include "ScriptedDrive.h"

#include "DriveAPI/DriveRequests.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace marrowbox::test {

namespace {

/// The folder whose children a request asks for: the first text in quotes, as an address writes them.
std::string placeOf(const std::string& url) {
    const std::string quote = "%27";
    const std::size_t begin = url.find(quote);
    if (begin == std::string::npos)
        return "drives";
    return url.substr(begin + quote.size(), url.find(quote, begin + 1) - begin - quote.size());
}

} // namespace

void ScriptedDrive::addSharedDrive(const std::string& id, const std::string& name) {
    sharedDrives_.push_back({.id = id, .name = name});
}

void ScriptedDrive::addFolder(const std::string& parent, const std::string& id, const std::string& name) {
    DriveFile folder;
    folder.id = SharedText(id);
    folder.name = name;
    folder.mimeType = SharedText("application/vnd.google-apps.folder");
    folders_[parent].push_back(std::move(folder));
}

void ScriptedDrive::fail(const std::string& place, const std::string& sentence) {
    failures_[place] = sentence;
}

void ScriptedDrive::letGo(const std::string& place) {
    held_.erase(place);
    const auto [begin, end] = waiting_.equal_range(place);
    for (auto waiting = begin; waiting != end; ++waiting)
        if (const auto gate = waiting->second.lock())
            gate->cancel();
    waiting_.erase(begin, end);
}

HTTPSend ScriptedDrive::web() {
    return [this](std::shared_ptr<const HTTPRequest> request, std::stop_token stop) {
        return answer(std::move(request), std::move(stop));
    };
}

asio::awaitable<HTTPResponse> ScriptedDrive::answer(std::shared_ptr<const HTTPRequest> request,
                                                    std::stop_token stop) {
    if (request->url.find("/drive/v3/") == std::string::npos)
        co_return HTTPResponse{.status = 200, .body = identity(request->url)};
    const std::string place = placeOf(request->url);
    asked_.push_back(place);
    if (held_.contains(place)) {
        const auto gate =
            std::make_shared<asio::steady_timer>(context_, asio::steady_timer::time_point::max());
        waiting_.emplace(place, gate);
        boost::system::error_code ended;
        co_await gate->async_wait(asio::redirect_error(asio::use_awaitable, ended));
    }
    const auto failure = failures_.find(place);
    if (failure != failures_.end() && !failure->second.empty())
        throw BackupError(failure->second);
    co_return HTTPResponse{.status = 200, .body = body(place)};
}

std::string ScriptedDrive::body(const std::string& place) const {
    if (place == "drives")
        return encodeJSON(DriveRequests::DrivePage{.drives = sharedDrives_}, JSONStyle::compact);
    const auto known = folders_.find(place);
    DriveRequests::FilePage page;
    if (known != folders_.end())
        page.files = known->second;
    return encodeJSON(page, JSONStyle::compact);
}

std::string ScriptedDrive::identity(const std::string& url) const {
    if (url.find("userinfo") != std::string::npos)
        return R"({"sub":")" + signingIn_.id + R"(","email":")" + signingIn_.email + R"(","name":")" +
               signingIn_.name + R"("})";
    const std::string send = signingIn_.canSendEmail ? " https://www.googleapis.com/auth/gmail.send" : "";
    return R"({"access_token":"access","refresh_token":"refresh","expires_in":3600,"scope":)"
           R"("https://www.googleapis.com/auth/drive.readonly)" +
           send + R"("})";
}

} // namespace marrowbox::test
