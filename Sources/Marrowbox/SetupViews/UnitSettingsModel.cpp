#include "Marrowbox/SetupViews/UnitSettingsModel.h"

#include "Marrowbox/Platform/ScreenWording.h"
#include "Marrowbox/SetupViews/ScreenWork.h"
#include "Marrowbox/SetupViews/SettingsModel.h"

#include <QVariantMap>
#include <algorithm>
#include <boost/describe/enum_from_string.hpp>
#include <boost/describe/enum_to_string.hpp>

namespace marrowbox {

namespace {

/// How long a sheet takes to go before the next one comes.
constexpr std::chrono::duration<double> sheetClosingTime{0.25};

template <typename Enumeration>
QString storedName(Enumeration value) {
    return boost::describe::enum_to_string(value, "");
}

template <typename Enumeration>
Enumeration fromStoredName(const QString& name, Enumeration otherwise) {
    Enumeration value = otherwise;
    boost::describe::enum_from_string(name.toUtf8().constData(), value);
    return value;
}

QVariantMap choice(const QVariant& value, const QString& title) {
    return {{"value", value}, {"title", title}};
}

bool isLimit(std::int64_t days) {
    return days >= 1;
}

} // namespace

UnitSettingsModel::UnitSettingsModel(std::shared_ptr<AppStore> store, SyncUnit unit, QObject* parent)
    : QObject(parent), store_(std::move(store)), unit_(std::move(unit)), original_(unit_) {
    connect(store_.get(), &StoreChanges::changed, this, [this](StoreField field) {
        if (field == StoreField::configuration)
            emit changed();
    });
}

template <typename Value>
void UnitSettingsModel::edit(Value& field, Value value) {
    if (field == value)
        return;
    field = std::move(value);
    emit changed();
}

void UnitSettingsModel::setName(const QString& name) {
    edit(unit_.name, name.toStdString());
}

QVariantList UnitSettingsModel::frequencies() {
    QVariantList choices;
    for (const ScheduleFrequency frequency : allScheduleFrequencies)
        choices.append(choice(storedName(frequency), spoken(title(frequency))));
    return choices;
}

QString UnitSettingsModel::frequency() const {
    return storedName(unit_.schedule.frequency);
}

void UnitSettingsModel::setFrequency(const QString& frequency) {
    edit(unit_.schedule.frequency, fromStoredName(frequency, unit_.schedule.frequency));
}

bool UnitSettingsModel::asksForHour() const {
    const ScheduleFrequency frequency = unit_.schedule.frequency;
    return frequency == ScheduleFrequency::daily || frequency == ScheduleFrequency::weekly;
}

bool UnitSettingsModel::asksForMinute() const {
    return asksForHour() || unit_.schedule.frequency == ScheduleFrequency::hourly;
}

bool UnitSettingsModel::asksForWeekday() const {
    return unit_.schedule.frequency == ScheduleFrequency::weekly;
}

void UnitSettingsModel::setHour(int hour) {
    edit(unit_.schedule.hour, static_cast<std::int64_t>(std::clamp(hour, 0, 23)));
}

void UnitSettingsModel::setMinute(int minute) {
    edit(unit_.schedule.minute, static_cast<std::int64_t>(std::clamp(minute, 0, 59)));
}

QVariantList UnitSettingsModel::weekdays() const {
    const Calendar calendar = store_->surroundings().calendar();
    QVariantList choices;
    for (int day = 1; day <= 7; ++day)
        choices.append(choice(day, QString::fromStdString(calendar.weekdayName(day))));
    return choices;
}

void UnitSettingsModel::setWeekday(int weekday) {
    edit(unit_.schedule.weekday, static_cast<std::int64_t>(std::clamp(weekday, 1, 7)));
}

QString UnitSettingsModel::scheduleNote() {
    return worded(tr("Uses your Mac’s time zone. Missed snapshots catch up after waking or reconnecting the "
                     "destination."));
}

QVariantList UnitSettingsModel::histories() const {
    QVariantList choices{choice(0, tr("Forever")), choice(30, tr("30 days")), choice(90, tr("90 days")),
                         choice(365, tr("1 year"))};
    const std::int64_t had = original_.retentionDays.value_or(0);
    const bool isOffered = had == 30 || had == 90 || had == 365;
    if (isLimit(had) && !isOffered)
        choices.append(choice(static_cast<int>(had), tr("%n days", nullptr, static_cast<int>(had))));
    return choices;
}

int UnitSettingsModel::history() const {
    return static_cast<int>(std::max<std::int64_t>(unit_.retentionDays.value_or(0), 0));
}

void UnitSettingsModel::setHistory(int days) {
    if (days != history())
        edit(unit_.retentionDays, isLimit(days) ? std::optional<std::int64_t>(days) : std::nullopt);
}

QVariantList UnitSettingsModel::policies() {
    QVariantList choices;
    for (const NotificationPolicy policy : allNotificationPolicies)
        choices.append(choice(storedName(policy), spoken(title(policy))));
    return choices;
}

QString UnitSettingsModel::policy() const {
    return storedName(unit_.notificationPolicy());
}

void UnitSettingsModel::setPolicy(const QString& policy) {
    if (policy != this->policy())
        edit(unit_.notifications, std::optional(fromStoredName(policy, unit_.notificationPolicy())));
}

QString UnitSettingsModel::policyDetail() const {
    return spoken(detail(unit_.notificationPolicy()));
}

bool UnitSettingsModel::emailIsOff() const {
    return store_->state().configuration->email.provider == EmailProvider::disabled;
}

QString UnitSettingsModel::theme() const {
    return storedName(unit_.accent());
}

void UnitSettingsModel::setTheme(const QString& theme) {
    if (theme != this->theme())
        edit(unit_.theme, std::optional(fromStoredName(theme, unit_.accent())));
}

bool UnitSettingsModel::shortensHistory(const SyncUnit& stored) const {
    const std::int64_t wanted = unit_.retentionDays.value_or(0);
    const std::int64_t kept = stored.retentionDays.value_or(0);
    return isLimit(wanted) && (!isLimit(kept) || wanted < kept);
}

void UnitSettingsModel::save() {
    if (!canSave())
        return;
    const SyncUnit* const stored = store_->state().unit(unit_.id);
    if (!stored) // removed meanwhile
        return dismiss();
    if (shortensHistory(*stored))
        return edit(confirmsRetention_, true);
    store(*stored);
}

void UnitSettingsModel::applyHistoryLimit() {
    confirmsRetention_ = false;
    if (const SyncUnit* const stored = store_->state().unit(unit_.id))
        store(*stored);
    else
        dismiss();
}

void UnitSettingsModel::keepHistory() {
    edit(confirmsRetention_, false);
}

// A run may have ended while the sheet was open, so only what can be edited here is taken from the copy.
void UnitSettingsModel::store(SyncUnit stored) {
    stored.name = name().trimmed().toStdString();
    stored.schedule = unit_.schedule;
    stored.retentionDays = unit_.retentionDays;
    stored.notifications = unit_.notifications;
    stored.theme = unit_.theme;
    store_->updateUnit(std::move(stored));
    dismiss();
}

void UnitSettingsModel::openGlobalEmailSettings() {
    const AppSurroundings& around = store_->surroundings();
    startScreenWork(around.main, showEmailSettings(store_, around.wait));
    dismiss();
}

// The sheet is gone when the wait ends, so this belongs to the store.
asio::awaitable<void> UnitSettingsModel::showEmailSettings(std::weak_ptr<AppStore> store, Wait wait) {
    co_await wait(sheetClosingTime, {});
    const auto living = store.lock();
    if (!living)
        co_return;
    living->showSettingsTab(static_cast<int>(SettingsTab::email));
    living->showSettings(true);
}

void UnitSettingsModel::dismiss() {
    emit dismissed();
}

} // namespace marrowbox
