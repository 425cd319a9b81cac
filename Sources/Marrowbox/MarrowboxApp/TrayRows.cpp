#include "Marrowbox/MarrowboxApp/TrayRows.h"

#include "Marrowbox/ContentView/Figures.h"
#include "Marrowbox/Platform/ScreenWording.h"

#include <QCoreApplication>
#include <map>

namespace marrowbox {

namespace {

/// Lends the texts of this file their context.
struct Text {
    Q_DECLARE_TR_FUNCTIONS(TrayRows)
};

TrayRow line() {
    return {.isLine = true};
}

TrayRow note(QString text) {
    return {.text = std::move(text), .isEnabled = false};
}

TrayRow command(QString text, TrayCommand::Any does) {
    return {.text = std::move(text), .command = std::move(does)};
}

void addUnits(std::vector<TrayRow>& rows, const AppState& state) {
    for (const SyncUnit& unit : state.configuration->units) {
        TrayRow row = command(Text::tr("Back up %1").arg(QString::fromStdString(unit.name)),
                              TrayCommand::BackUp{unit.id});
        row.isEnabled = !*state.activeUnitID;
        rows.push_back(std::move(row));
    }
    if (*state.activeUnitID)
        rows.push_back(command(Text::tr("Cancel backup"), TrayCommand::CancelBackup{}));
}

void addMounts(std::vector<TrayRow>& rows, const AppState& state) {
    if (state.mounted->empty())
        return;
    rows.push_back(line());
    rows.push_back(note(Text::tr("Mounted snapshots")));
    std::multimap<std::string, Uuid> byName;
    for (const auto& [id, mounted] : *state.mounted)
        byName.emplace(mounted.displayName, id);
    for (const auto& [name, id] : byName) {
        TrayRow eject = command(Text::tr("Eject"), TrayCommand::Eject{id});
        eject.icon = "eject";
        rows.push_back(
            {.text = QString::fromStdString(name),
             .children = {command(worded(Text::tr("Open in Finder")), TrayCommand::OpenMounted{id}),
                          std::move(eject)}});
    }
}

} // namespace

std::vector<TrayRow> trayRows(const AppState& state) {
    std::vector<TrayRow> rows;
    rows.push_back(note(*state.activeUnitID ? QString::fromStdString(*state.progress)
                                            : Text::tr("Your backup companion")));
    rows.push_back(command(Text::tr("Open Marrowbox"), TrayCommand::OpenWindow{}));
    rows.push_back(line());
    addUnits(rows, state);
    addMounts(rows, state);
    if (const std::size_t waiting = state.pendingEmails(); waiting > 0)
        rows.push_back(note(Text::tr("%1 email summaries waiting to send")
                                .arg(countText(static_cast<std::int64_t>(waiting)))));
    rows.push_back(line());
    rows.push_back(command(Text::tr("Settings"), TrayCommand::OpenSettings{}));
    rows.push_back(command(Text::tr("Quit Marrowbox"), TrayCommand::Quit{}));
    return rows;
}

QString traySymbol(const AppState& state) {
    return *state.activeUnitID ? "arrow.triangle.2.circlepath.cloud" : "cloud.checkmark";
}

} // namespace marrowbox
