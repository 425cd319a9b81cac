#pragma once

#include "DriveAPI/DriveAPI.h"
#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/SetupViews/LocationList.h"

#include <QObject>
#include <QPointer>
#include <memory>
#include <optional>
#include <qqmlregistration.h>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox {

/// Walks down the folders of one account's Drive, to pick one of them. Only the listing of the place that is
/// shown now counts: going anywhere else stops one that is still under way, and its result is dropped. Main
/// thread.
class DriveBrowser : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool isAtRoots READ isAtRoots NOTIFY changed)
    Q_PROPERTY(QString placeName READ placeName NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(bool hasFailed READ hasFailed NOTIFY changed)
    Q_PROPERTY(bool hasNoSubfolders READ hasNoSubfolders NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel* locations READ locations CONSTANT)

  public:
    explicit DriveBrowser(std::shared_ptr<AppStore> store, QObject* parent = nullptr);
    ~DriveBrowser() override;

    const std::string& accountID() const { return accountID_; }
    /// Lists what the account offers to begin with; without an account nothing is listed.
    void browse(std::string accountID);
    /// Ends a listing that is under way.
    void stop();

    /// The folder whose subfolders are shown.
    std::optional<DriveLocation> place() const;

    bool isAtRoots() const { return path_.empty(); }
    QString placeName() const;
    bool isLoading() const { return isLoading_; }
    /// The last listing ended with a failure, which was told.
    bool hasFailed() const { return hasFailed_; }
    bool hasNoSubfolders() const;
    LocationList* locations() { return &locations_; }

    Q_INVOKABLE void open(int row);
    Q_INVOKABLE void goBack();
    /// Lists the same place again.
    Q_INVOKABLE void reload();

  signals:
    void changed();
    /// A listing begins, and what was told of an earlier one holds no more.
    void listing();
    void failed(const QString& issue);

  private:
    struct Outcome {
        std::vector<DriveLocation> locations;
        std::optional<std::string> issue;
    };

    static asio::awaitable<void> list(QPointer<DriveBrowser> self, DriveAPI api,
                                      std::optional<DriveLocation> in, std::stop_token stop);
    void load();
    void showRoots();
    void take(Outcome outcome);

    std::shared_ptr<AppStore> store_;
    std::string accountID_;
    std::vector<DriveLocation> roots_; ///< Of the account, once they are listed.
    std::vector<DriveLocation> path_;  ///< Deepest last.
    LocationList locations_;
    bool isLoading_ = false;
    bool hasFailed_ = false;
    std::stop_source listing_;
};

} // namespace marrowbox
