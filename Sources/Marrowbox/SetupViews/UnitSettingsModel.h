#pragma once

#include "Marrowbox/AppStore/AppStore.h"

#include <QObject>
#include <QVariantList>
#include <memory>
#include <qqmlregistration.h>

namespace marrowbox {

/// The sheet that edits one backup: name, schedule, history, email and colour. A working copy: nothing
/// reaches the store before it is saved. Main thread.
class UnitSettingsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("")
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY changed)
    Q_PROPERTY(QVariantList frequencies READ frequencies CONSTANT)
    Q_PROPERTY(QString frequency READ frequency WRITE setFrequency NOTIFY changed)
    Q_PROPERTY(bool asksForHour READ asksForHour NOTIFY changed)
    Q_PROPERTY(bool asksForMinute READ asksForMinute NOTIFY changed)
    Q_PROPERTY(bool asksForWeekday READ asksForWeekday NOTIFY changed)
    Q_PROPERTY(int hour READ hour WRITE setHour NOTIFY changed)
    Q_PROPERTY(int minute READ minute WRITE setMinute NOTIFY changed)
    Q_PROPERTY(QVariantList weekdays READ weekdays CONSTANT)
    Q_PROPERTY(int weekday READ weekday WRITE setWeekday NOTIFY changed)
    Q_PROPERTY(QString scheduleNote READ scheduleNote CONSTANT)
    Q_PROPERTY(QVariantList histories READ histories CONSTANT)
    Q_PROPERTY(int history READ history WRITE setHistory NOTIFY changed)
    Q_PROPERTY(QVariantList policies READ policies CONSTANT)
    Q_PROPERTY(QString policy READ policy WRITE setPolicy NOTIFY changed)
    Q_PROPERTY(QString policyDetail READ policyDetail NOTIFY changed)
    Q_PROPERTY(bool emailIsOff READ emailIsOff NOTIFY changed)
    Q_PROPERTY(QString theme READ theme WRITE setTheme NOTIFY changed)
    Q_PROPERTY(bool canSave READ canSave NOTIFY changed)
    Q_PROPERTY(bool confirmsRetention READ confirmsRetention NOTIFY changed)

  public:
    /// For a unit that the store has.
    UnitSettingsModel(std::shared_ptr<AppStore> store, SyncUnit unit, QObject* parent = nullptr);

    QString name() const { return QString::fromStdString(unit_.name); }
    void setName(const QString& name);

    /// For pickers; the values are the stored names.
    static QVariantList frequencies();
    QString frequency() const;
    void setFrequency(const QString& frequency);
    bool asksForHour() const;
    bool asksForMinute() const;
    bool asksForWeekday() const;
    int hour() const { return static_cast<int>(unit_.schedule.hour); }
    void setHour(int hour);
    int minute() const { return static_cast<int>(unit_.schedule.minute); }
    void setMinute(int minute);
    /// In the user's language, by their number.
    QVariantList weekdays() const;
    int weekday() const { return static_cast<int>(unit_.schedule.weekday); }
    void setWeekday(int weekday);
    static QString scheduleNote();

    /// Days for a picker, 0 being for ever; also those that the unit had, where nobody offers them.
    QVariantList histories() const;
    int history() const;
    void setHistory(int days);

    static QVariantList policies();
    QString policy() const;
    void setPolicy(const QString& policy);
    QString policyDetail() const;
    bool emailIsOff() const;

    QString theme() const;
    void setTheme(const QString& theme);

    bool canSave() const { return !name().trimmed().isEmpty(); }
    /// The user is being asked whether history may be thrown away.
    bool confirmsRetention() const { return confirmsRetention_; }

    /// Saves and closes, or asks first where that shortens the history.
    Q_INVOKABLE void save();
    Q_INVOKABLE void applyHistoryLimit();
    Q_INVOKABLE void keepHistory();
    /// Closes this sheet, and then opens the email settings of all backups.
    Q_INVOKABLE void openGlobalEmailSettings();
    Q_INVOKABLE void dismiss();

  signals:
    void changed();
    void dismissed();

  private:
    template <typename Value>
    void edit(Value& field, Value value);
    bool shortensHistory(const SyncUnit& stored) const;
    void store(SyncUnit stored);
    static asio::awaitable<void> showEmailSettings(std::weak_ptr<AppStore> store, Wait wait);

    std::shared_ptr<AppStore> store_;
    SyncUnit unit_;
    const SyncUnit original_;
    bool confirmsRetention_ = false;
};

} // namespace marrowbox
