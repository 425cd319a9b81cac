#pragma once

#include "Marrowbox/ContentView/IdentifiedRows.h"
#include "Marrowbox/ContentView/UnitRuns.h"

#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The runs of the selected unit, newest first, with what became of their mails. Main thread.
class ActivityModel : public IdentifiedRows {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")

  public:
    enum Role {
        dateText = Qt::UserRole,
        outcome,
        outcomeTone, ///< "running", "good", "bad" or "neutral".
        text,        ///< What the run has to say; of a good one without words, what it changed.
        emailText,
        emailIcon,
        emailTone,
        catchUp, ///< Empty unless the run stands for missed ones.
        spokenName,
    };

    /// The runs outlive the list.
    ActivityModel(std::shared_ptr<AppStore> store, const UnitRuns& runs, QObject* parent = nullptr);

    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    void refresh();
    QString spoken(const RunRecord& run) const;

    std::shared_ptr<AppStore> store_;
    const UnitRuns& runs_;
    Formats formats_;
};

} // namespace marrowbox
