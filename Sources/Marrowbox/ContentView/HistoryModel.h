#pragma once

#include "Marrowbox/ContentView/IdentifiedRows.h"
#include "Marrowbox/ContentView/UnitRuns.h"

#include <memory>
#include <qqmlregistration.h>
#include <unordered_map>

namespace marrowbox {

/// The snapshots of the selected unit, newest first. A row's texts are made when a view asks for them, so a
/// history may be as long as it likes. Main thread.
class HistoryModel : public IdentifiedRows {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(QString mountTitle READ mountTitle CONSTANT)

  public:
    enum Role {
        dateText = Qt::UserRole,
        summary,
        emailText, ///< Empty, as all of the email, when no record tells of the run.
        emailShortText,
        emailIcon,
        emailTone,
        dataSize, ///< Empty when nobody knows the sizes.
        fullSize,
        isMounted,
        spokenName, ///< All of the row in one sentence.
    };

    /// The runs outlive the list.
    HistoryModel(std::shared_ptr<AppStore> store, const UnitRuns& runs, QObject* parent = nullptr);

    static QString mountTitle();

    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // What the rows offer. A row that is gone does nothing.
    Q_INVOKABLE void mount(int row);
    Q_INVOKABLE void restore(int row);
    Q_INVOKABLE void eject(int row);

  private:
    void refresh();
    const Snapshot* at(const QModelIndex& index) const;
    QVariant email(const Snapshot& snapshot, int role) const;
    QString size(const Snapshot& snapshot, int role) const;
    QString spoken(const Snapshot& snapshot) const;
    QString date(const Snapshot& snapshot) const;
    bool isMountedNow(const Snapshot& snapshot) const;

    std::shared_ptr<AppStore> store_;
    const UnitRuns& runs_;
    SnapshotList snapshots_; ///< Keeps alive what byID_ points to.
    std::unordered_map<Uuid, const Snapshot*> byID_;
    Formats formats_;
};

} // namespace marrowbox
