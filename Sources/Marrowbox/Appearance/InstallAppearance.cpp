#include "Marrowbox/Appearance/InstallAppearance.h"

#include "Marrowbox/Appearance/SymbolProvider.h"

#include <QQmlEngine>
#include <QQuickWindow>

// Written by the build; naming them keeps the linker from dropping the module out of the static library.
extern void qml_register_types_Marrowbox_Appearance();

namespace marrowbox {

void installAppearance(QQmlEngine& engine) {
    qml_register_types_Marrowbox_Appearance();
    engine.addImportPath(QStringLiteral(":/"));
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolProvider);
    // The desktop's own text rendering is sharper at ordinary sizes than scalable glyph fields.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

} // namespace marrowbox
