#include "Marrowbox/MarrowboxApp/SpareTime.h"

#include "Desktopless.h"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlIncubator>
#include <array>
#include <gtest/gtest.h>
#include <memory>

namespace marrowbox {

namespace {

/// Something that takes longer to make than a turn has.
constexpr auto slowPiece = R"(
    import QtQml
    QtObject {
        Component.onCompleted: {
            const begin = Date.now();
            while (Date.now() - begin < 3) {}
        }
    }
)";

} // namespace

TEST(SpareTime, makesOnePieceAfterAnotherWithEventsInBetween) {
    test::startDesktoplessApplication();
    SpareTime spareTime;
    QQmlEngine engine;
    engine.setIncubationController(&spareTime);
    QQmlComponent component(&engine);
    component.setData(slowPiece, QUrl());
    std::array<QQmlIncubator, 3> pieces;
    for (QQmlIncubator& piece : pieces)
        component.create(piece);
    ASSERT_EQ(spareTime.incubatingObjectCount(), 3);
    for (int left = spareTime.incubatingObjectCount(); left > 0; --left) {
        while (spareTime.incubatingObjectCount() == left)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(spareTime.incubatingObjectCount(), left - 1);
    }
    for (QQmlIncubator& piece : pieces)
        EXPECT_TRUE(std::unique_ptr<QObject>(piece.object()));
}

} // namespace marrowbox
