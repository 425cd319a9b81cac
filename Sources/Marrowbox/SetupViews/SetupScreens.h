#pragma once

#include "Marrowbox/SetupViews/NewUnitModel.h"
#include "Marrowbox/SetupViews/SettingsModel.h"
#include "Marrowbox/SetupViews/UnitSettingsModel.h"
#include "Marrowbox/SetupViews/WelcomeModel.h"

namespace marrowbox {

/// Makes the models of the welcome screen and of the sheets, each when its sheet is to open. SetupSheets.qml
/// shows them and hands each one back when its sheet has gone. Main thread; outlives the window.
class SetupScreens : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(marrowbox::WelcomeModel* welcome READ welcome CONSTANT)

  public:
    explicit SetupScreens(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    WelcomeModel* welcome() { return &welcome_; }

    /// To be called once a window is there: opens the sheets that the store wants open already.
    Q_INVOKABLE void appear();
    /// Opens the settings of a backup, by the text of its identifier.
    Q_INVOKABLE void editUnit(const QString& id);
    /// Ends a model whose sheet has gone.
    Q_INVOKABLE void release(QObject* model);

  signals:
    void newUnitOpened(marrowbox::NewUnitModel* model);
    void settingsOpened(marrowbox::SettingsModel* model);
    void unitSettingsOpened(marrowbox::UnitSettingsModel* model);

  private:
    void follow(StoreField field);

    std::shared_ptr<AppStore> store_;
    WelcomeModel welcome_;
    QPointer<NewUnitModel> newUnit_; ///< While its sheet is wanted.
    QPointer<SettingsModel> settings_;
};

} // namespace marrowbox
