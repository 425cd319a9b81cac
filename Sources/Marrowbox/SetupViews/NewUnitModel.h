#pragma once

#include "Marrowbox/SetupViews/AccountConnection.h"
#include "Marrowbox/SetupViews/DriveBrowser.h"

#include <filesystem>

namespace marrowbox {

/// The sheet that makes a backup: an account, a source in its Drive, a destination, a name. Main thread.
class NewUnitModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(marrowbox::AccountConnection* connection READ connection CONSTANT)
    Q_PROPERTY(marrowbox::DriveBrowser* browser READ browser CONSTANT)
    Q_PROPERTY(QVariantList accounts READ accounts NOTIFY accountsChanged)
    Q_PROPERTY(QString accountID READ accountID NOTIFY changed)
    Q_PROPERTY(bool hasSource READ hasSource NOTIFY changed)
    Q_PROPERTY(QString sourceName READ sourceName NOTIFY changed)
    Q_PROPERTY(QString sourceKind READ sourceKind NOTIFY changed)
    Q_PROPERTY(QString sourceSymbol READ sourceSymbol NOTIFY changed)
    Q_PROPERTY(bool hasDestination READ hasDestination NOTIFY changed)
    Q_PROPERTY(QString destinationText READ destinationText NOTIFY changed)
    Q_PROPERTY(QString destinationNote READ destinationNote CONSTANT)
    Q_PROPERTY(bool isChoosing READ isChoosing NOTIFY changed)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool canCreate READ canCreate NOTIFY changed)
    Q_PROPERTY(QString missing READ missing NOTIFY changed)
    Q_PROPERTY(bool isCreating READ isCreating NOTIFY changed)
    Q_PROPERTY(QString creatingReason READ creatingReason CONSTANT)

  public:
    explicit NewUnitModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);
    ~NewUnitModel() override;

    AccountConnection* connection() { return &connection_; }
    DriveBrowser* browser() { return &browser_; }
    QVariantList accounts() const;
    QString accountID() const;
    bool hasSource() const { return source_.has_value(); }
    QString sourceName() const;
    QString sourceKind() const;
    QString sourceSymbol() const;
    bool hasDestination() const { return destination_.has_value(); }
    /// The chosen folder's path, or what kind of folder is wanted.
    QString destinationText() const;
    static QString destinationNote();
    bool isChoosing() const { return isChoosing_; }
    QString name() const { return name_; }
    void setName(const QString& name);
    QString error() const { return error_; }
    bool canCreate() const { return missing().isEmpty() && !isCreating_; }
    /// What is still to be chosen or filled in; empty when nothing is.
    QString missing() const;
    bool isCreating() const { return isCreating_; }
    /// Why nothing can be changed while the backup is being made.
    static QString creatingReason();

    /// To be called once the sheet is shown.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void selectAccount(const QString& id);
    /// Takes the folder that the browser shows as the source.
    Q_INVOKABLE void useFolder();
    Q_INVOKABLE void changeSource();
    Q_INVOKABLE void chooseDestination();
    Q_INVOKABLE void create();
    /// Closes the sheet, unless a backup is just being made.
    Q_INVOKABLE void dismiss();

  signals:
    void changed();
    void accountsChanged();
    void dismissed();

  private:
    struct Choice {
        std::optional<std::filesystem::path> folder;
        std::optional<std::string> issue;
    };

    static asio::awaitable<void> choose(QPointer<NewUnitModel> self, std::shared_ptr<AppStore> store,
                                        std::stop_token stop);
    static asio::awaitable<void> make(QPointer<NewUnitModel> self, std::shared_ptr<AppStore> store,
                                      SyncUnit unit, std::filesystem::path destination, std::stop_token stop);
    void follow(StoreField field);
    void takeFirstAccount();
    void take(Choice choice);
    void finish(const std::optional<std::string>& issue);
    void fail(const QString& issue);
    void leave();
    SyncUnit described() const;

    std::shared_ptr<AppStore> store_;
    AccountConnection connection_;
    DriveBrowser browser_;
    std::size_t accountCount_ = 0;
    std::optional<DriveLocation> source_;
    std::optional<std::filesystem::path> destination_;
    QString name_;
    QString error_;
    bool isChoosing_ = false;
    bool isCreating_ = false;
    std::stop_source life_; ///< Ended with the sheet.
};

} // namespace marrowbox
