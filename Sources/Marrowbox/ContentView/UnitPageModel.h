#pragma once

#include "Marrowbox/ContentView/ActivityModel.h"
#include "Marrowbox/ContentView/HistoryModel.h"
#include "Marrowbox/ContentView/MinuteBell.h"
#include "Marrowbox/ContentView/UnitPage.h"
#include "Marrowbox/ContentView/UnitRuns.h"

#include <QObject>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The page of the selected unit. It stays the same object when another unit is selected, so that nothing has
/// to be built again; what the user had opened on the page is closed then. Main thread.
class UnitPageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(bool hasUnit READ hasUnit NOTIFY unitChanged)
    Q_PROPERTY(QString unitID READ unitID NOTIFY unitChanged)
    Q_PROPERTY(marrowbox::UnitPage page READ page NOTIFY pageChanged)
    Q_PROPERTY(QString progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(int progressDone READ progressDone NOTIFY progressChanged)
    Q_PROPERTY(int progressTotal READ progressTotal NOTIFY progressChanged)
    Q_PROPERTY(marrowbox::HistoryModel* history READ history CONSTANT)
    Q_PROPERTY(marrowbox::ActivityModel* activity READ activity CONSTANT)
    Q_PROPERTY(bool confirmsRemove READ confirmsRemove WRITE setConfirmsRemove NOTIFY openedChanged)
    Q_PROPERTY(bool showsActivity READ showsActivity WRITE setShowsActivity NOTIFY openedChanged)

  public:
    explicit UnitPageModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    bool hasUnit() const { return store_->state().selectedUnit() != nullptr; }
    /// Empty without a unit.
    QString unitID() const;
    const UnitPage& page() const { return page_; }
    /// The line about the running backup of this unit.
    QString progress() const;
    /// How many files of how many have come, where the line tells; a total of 0 is unknown.
    int progressDone() const { return progressCount(1); }
    int progressTotal() const { return progressCount(2); }
    HistoryModel* history() { return &history_; }
    ActivityModel* activity() { return &activity_; }

    // What the user has opened.
    bool confirmsRemove() const { return opened_.removeQuestion; }
    void setConfirmsRemove(bool shown);
    bool showsActivity() const { return opened_.activity; }
    void setShowsActivity(bool shown);

    /// Whether texts follow the clock; off for a window that nobody sees.
    void setFollowsTime(bool follows);

    Q_INVOKABLE void reconnect();
    Q_INVOKABLE void backUpNow();
    Q_INVOKABLE void cancelBackup();
    /// The newest snapshot.
    Q_INVOKABLE void explore();
    Q_INVOKABLE void openOrigin();
    /// Asks for the settings of the unit.
    Q_INVOKABLE void openOptions();
    /// Without asking.
    Q_INVOKABLE void remove();

  signals:
    void unitChanged();
    void pageChanged();
    void progressChanged();
    void openedChanged();
    void optionsWanted(const QString& unitID);

  private:
    struct Opened {
        bool removeQuestion = false;
        bool activity = false;

        friend bool operator==(const Opened&, const Opened&) = default;
    };

    void follow(StoreField field);
    void beginUnit();
    void renewMoment();
    void refresh();
    void open(Opened opened);
    int progressCount(int group) const;

    std::shared_ptr<AppStore> store_;
    UnitRuns runs_;
    HistoryModel history_;
    ActivityModel activity_;
    MinuteBell bell_;
    PageMoment moment_;
    UnitPage page_;
    Opened opened_;
};

} // namespace marrowbox
