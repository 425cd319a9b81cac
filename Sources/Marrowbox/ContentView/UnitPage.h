#pragma once

#include "Marrowbox/AppStore/AppState.h"
#include "Platform/Calendar.h"
#include "Platform/Formats.h"

#include <QCoreApplication>
#include <QString>
#include <qqmlregistration.h>

namespace marrowbox {

/// All that the page of a unit says, but for its lists and the progress of a run. An empty text is not shown.
class UnitPage {
    Q_GADGET
    QML_VALUE_TYPE(unitPage)
    Q_DECLARE_TR_FUNCTIONS(UnitPage)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QString theme MEMBER theme CONSTANT)
    Q_PROPERTY(bool isDisconnected MEMBER isDisconnected CONSTANT)
    Q_PROPERTY(bool isConnecting MEMBER isConnecting CONSTANT)
    Q_PROPERTY(QString reconnectTitle MEMBER reconnectTitle CONSTANT)
    Q_PROPERTY(QString eyebrow MEMBER eyebrow CONSTANT)
    Q_PROPERTY(QString accountLine MEMBER accountLine CONSTANT)
    Q_PROPERTY(QString statusTitle MEMBER statusTitle CONSTANT)
    Q_PROPERTY(bool isBusy MEMBER isBusy CONSTANT)
    Q_PROPERTY(QString lastResult MEMBER lastResult CONSTANT)
    Q_PROPERTY(bool lastResultIsGood MEMBER lastResultIsGood CONSTANT)
    Q_PROPERTY(QString destinationIssue MEMBER destinationIssue CONSTANT)
    Q_PROPERTY(QString nextText MEMBER nextText CONSTANT)
    Q_PROPERTY(QString backUpLabel MEMBER backUpLabel CONSTANT)
    Q_PROPERTY(QString exploreTitle MEMBER exploreTitle CONSTANT)
    Q_PROPERTY(bool isExploring MEMBER isExploring CONSTANT)
    Q_PROPERTY(QString origin MEMBER origin CONSTANT)
    Q_PROPERTY(QString originDetail MEMBER originDetail CONSTANT)
    Q_PROPERTY(QString originIcon MEMBER originIcon CONSTANT)
    Q_PROPERTY(QString originLink MEMBER originLink CONSTANT)
    Q_PROPERTY(QString destination MEMBER destination CONSTANT)
    Q_PROPERTY(QString destinationDetail MEMBER destinationDetail CONSTANT)
    Q_PROPERTY(QString schedule MEMBER schedule CONSTANT)
    Q_PROPERTY(QString scheduleDetail MEMBER scheduleDetail CONSTANT)
    Q_PROPERTY(bool isReading MEMBER isReading CONSTANT)
    Q_PROPERTY(bool keepsStorageRoom MEMBER keepsStorageRoom CONSTANT)
    Q_PROPERTY(QString totalSize MEMBER totalSize CONSTANT)
    Q_PROPERTY(QString latestSize MEMBER latestSize CONSTANT)
    Q_PROPERTY(QString removeQuestion MEMBER removeQuestion CONSTANT)

  public:
    QString name;
    QString theme; ///< Its stored name.
    bool isDisconnected = false;
    bool isConnecting = false;
    QString reconnectTitle;
    QString eyebrow;
    QString accountLine;
    QString statusTitle;
    bool isBusy = false;
    QString lastResult;
    bool lastResultIsGood = false;
    QString destinationIssue;
    QString nextText;
    QString backUpLabel; ///< For assistive technology.
    QString exploreTitle;
    bool isExploring = false;
    QString origin;
    QString originDetail;
    QString originIcon;
    QString originLink;
    QString destination;
    QString destinationDetail;
    QString schedule;
    QString scheduleDetail;
    bool isReading = false;        ///< The history is still to come.
    bool keepsStorageRoom = false; ///< Sizes are known, or likely to be in a moment.
    QString totalSize;             ///< Empty, as the next one, unless both sizes are known.
    QString latestSize;
    QString removeQuestion;

    friend bool operator==(const UnitPage&, const UnitPage&) = default;
};

/// When a page is read, and how its reader writes.
struct PageMoment {
    Date now;
    Formats formats;
    Calendar calendar;
};

/// The page of a unit; last is its newest run, null without any.
UnitPage unitPage(const AppState& state, const SyncUnit& unit, const RunRecord* last,
                  const PageMoment& moment);

/// The symbol of a source: a folder, or the people who share a drive.
QString sourceIcon(const DriveLocation& source);

/// A theme as it is stored.
QString themeName(AccentTheme theme);

} // namespace marrowbox
