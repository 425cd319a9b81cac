#include "Gallery/LongerWords.h"

#include "Marrowbox/Appearance/SymbolProvider.h"

namespace marrowbox::gallery {

namespace {

Scene page(const char* name, QSize size) {
    const QString file = QStringLiteral("qrc:/Gallery/Pages/%1.qml").arg(QLatin1String(name));
    return {.name = QStringLiteral("controls-") + QString::fromLatin1(name).toLower(),
            .component = file,
            .size = size};
}

Scene symbols() {
    Scene scene = page("Symbols", {880, 640});
    scene.state = [](QObject*) { return QVariantMap{{QStringLiteral("names"), symbolNames()}}; };
    return scene;
}

} // namespace

std::vector<Scene> controlScenes() {
    return {
        page("Type", {880, 640}),    page("Themes", {880, 640}),    symbols(),
        page("Buttons", {880, 640}), page("Forms", {880, 760}),     page("Lists", {880, 640}),
        page("Status", {880, 640}),  page("SheetPage", {880, 700}), page("QuestionPage", {880, 640}),
        page("Menus", {880, 640}),
    };
}

std::vector<Scene> allScenes() {
    std::vector<Scene> scenes = controlScenes();
    for (const auto& family : {contentScenes(), setupScenes()})
        for (const Scene& scene : family) {
            scenes.push_back(scene);
            scenes.push_back(inLongerWords(scene));
        }
    return scenes;
}

} // namespace marrowbox::gallery
