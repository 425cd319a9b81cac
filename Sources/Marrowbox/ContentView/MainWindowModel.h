#pragma once

#include "Marrowbox/ContentView/UnitListModel.h"
#include "Marrowbox/ContentView/UnitPageModel.h"

#include <QObject>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The main window: its sidebar, what its detail pane shows, and what lies over it. Main thread.
class MainWindowModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool isVisible READ isVisible WRITE setVisible NOTIFY visibleChanged)
    Q_PROPERTY(marrowbox::UnitListModel* units READ units CONSTANT)
    Q_PROPERTY(marrowbox::UnitPageModel* unitPage READ unitPage CONSTANT)
    Q_PROPERTY(QString accent READ accent NOTIFY accentChanged)
    Q_PROPERTY(QString mountIssue READ mountIssue NOTIFY mountIssueChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool showsSettings READ showsSettings WRITE setShowsSettings NOTIFY showsSettingsChanged)
    Q_PROPERTY(bool showsNewUnit READ showsNewUnit WRITE setShowsNewUnit NOTIFY showsNewUnitChanged)

  public:
    explicit MainWindowModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    /// Whether anybody sees the window. While nobody does, nothing here follows the clock.
    bool isVisible() const { return isVisible_; }
    void setVisible(bool visible);
    UnitListModel* units() { return &units_; }
    /// Its hasUnit decides between the page of a unit and the welcome.
    UnitPageModel* unitPage() { return &unitPage_; }
    /// The stored name of the theme that the window is tinted with.
    QString accent() const { return accent_; }
    /// Empty when nothing is wrong.
    QString mountIssue() const;
    QString errorMessage() const;

    bool showsSettings() const { return *store_->state().showSettings; }
    void setShowsSettings(bool shown);
    bool showsNewUnit() const { return *store_->state().showNewUnit; }
    void setShowsNewUnit(bool shown);

    Q_INVOKABLE void retryMounts();
    Q_INVOKABLE void dismissError();

  signals:
    void visibleChanged();
    void accentChanged();
    void mountIssueChanged();
    void errorMessageChanged();
    void showsSettingsChanged();
    void showsNewUnitChanged();

  private:
    void follow(StoreField field);
    void refreshAccent();

    std::shared_ptr<AppStore> store_;
    UnitListModel units_;
    UnitPageModel unitPage_;
    QString accent_;
    bool isVisible_ = true;
};

} // namespace marrowbox
