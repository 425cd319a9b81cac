#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <vector>

namespace marrowbox::gallery {

/// One picture to take: a component in one state.
struct Scene {
    /// The picture's file name without its end: "unit-busy".
    QString name;
    /// The QML file: "qrc:/Marrowbox/ContentView/UnitDetailView.qml". Its root is an Item or a Window.
    QString component;
    QSize size = QSize(1060, 740);
    /// What the component's required properties get. Objects that it makes belong to the given parent, which
    /// lives as long as the scene.
    std::function<QVariantMap(QObject* parent)> state = [](QObject*) { return QVariantMap(); };
};

/// The pages of the base controls.
std::vector<Scene> controlScenes();

/// The main window and the page of a backup.
std::vector<Scene> contentScenes();

/// The welcome screen and the sheets.
std::vector<Scene> setupScenes();

/// Every scene. A family of screens adds a function of its own, like the one above.
std::vector<Scene> allScenes();

} // namespace marrowbox::gallery
