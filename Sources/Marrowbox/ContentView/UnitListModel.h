#pragma once

#include "Marrowbox/AppStore/AppStore.h"
#include "Marrowbox/ContentView/IdentifiedRows.h"

#include <QString>
#include <memory>
#include <qqmlregistration.h>
#include <unordered_map>

namespace marrowbox {

/// The backups in the sidebar, in the order of the configuration. Main thread.
class UnitListModel : public IdentifiedRows {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)

  public:
    enum Role {
        name = Qt::UserRole,
        icon,
        theme,    ///< Its stored name.
        stopNote, ///< Empty unless the unit cannot run.
    };

    explicit UnitListModel(std::shared_ptr<AppStore> store, QObject* parent = nullptr);

    /// -1 when no unit is selected.
    int selectedRow() const { return selectedRow_; }

    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

    Q_INVOKABLE void select(int row);

  signals:
    void selectedRowChanged();

  private:
    struct Row {
        QString name;
        QString icon;
        QString theme;
        QString stopNote;

        friend bool operator==(const Row&, const Row&) = default;
    };
    Row rowOf(const SyncUnit& unit) const;
    void refresh();
    void followSelection();

    std::shared_ptr<AppStore> store_;
    std::unordered_map<Uuid, Row> rows_;
    int selectedRow_ = -1;
};

} // namespace marrowbox
