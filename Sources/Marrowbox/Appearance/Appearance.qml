pragma Singleton

import QtQuick
import Marrowbox.Appearance

// Every colour, size, duration and font of the screens, by what it is for. The colours come in a light and a dark set
// and are computed in C++; all else is written here and nowhere else.
QtObject {
    readonly property bool dark: AppearanceState.dark
    readonly property bool reducedMotion: AppearanceState.reducedMotion
    /// The theme of the selected backup by its stored name. Controls take it unless they are told another.
    readonly property string theme: AppearanceState.theme
    /// All themes, in the order in which they are offered: each has name, title, color, onColor, ink, tint.
    readonly property var accents: AppearanceState.accents

    // Grounds
    readonly property color window: AppearanceState.colors.window
    readonly property color sidebar: AppearanceState.colors.sidebar
    readonly property color card: AppearanceState.colors.card
    readonly property color raised: AppearanceState.colors.raised
    readonly property color sheet: AppearanceState.colors.sheet
    readonly property color popup: AppearanceState.colors.popup
    readonly property color field: AppearanceState.colors.field
    readonly property color scrim: AppearanceState.colors.scrim
    readonly property color shadow: AppearanceState.colors.shadow
    readonly property color inverse: AppearanceState.colors.inverse
    // What is drawn on them
    readonly property color text: AppearanceState.colors.text
    readonly property color muted: AppearanceState.colors.muted
    readonly property color secondary: AppearanceState.colors.secondary
    readonly property color faint: AppearanceState.colors.faint
    readonly property color border: AppearanceState.colors.border
    readonly property color fieldBorder: AppearanceState.colors.fieldBorder
    readonly property color alert: AppearanceState.colors.alert
    readonly property color alertFill: AppearanceState.colors.alertFill
    readonly property color alertLabel: AppearanceState.colors.alertLabel
    readonly property color success: AppearanceState.colors.success
    readonly property color warning: AppearanceState.colors.warning
    readonly property color overlay: AppearanceState.colors.overlay
    readonly property color inverseLabel: AppearanceState.colors.inverseLabel

    // Distances, on a grid of four
    readonly property int hairGap: 2
    readonly property int tinyGap: 4
    readonly property int smallGap: 8
    readonly property int gap: 12
    readonly property int mediumGap: 16
    readonly property int largeGap: 24
    readonly property int hugeGap: 32
    readonly property int pageMargin: 40

    // Type: a size a step, named by what it is for
    readonly property string family: "Inter"
    readonly property string displayFamily: "Inter Display"
    readonly property font hero: Qt.font({ family: displayFamily, pixelSize: 34, weight: Font.DemiBold, letterSpacing: -0.6 })
    readonly property font title: Qt.font({ family: displayFamily, pixelSize: 26, weight: Font.DemiBold, letterSpacing: -0.35 })
    readonly property font heading: Qt.font({ family: displayFamily, pixelSize: 19, weight: Font.DemiBold, letterSpacing: -0.1 })
    readonly property font subheading: Qt.font({ family: family, pixelSize: 15, weight: Font.DemiBold })
    readonly property font lead: Qt.font({ family: family, pixelSize: 15 })
    readonly property font body: Qt.font({ family: family, pixelSize: 13 })
    readonly property font strong: Qt.font({ family: family, pixelSize: 13, weight: Font.DemiBold })
    readonly property font button: Qt.font({ family: family, pixelSize: 13, weight: Font.Medium })
    readonly property font caption: Qt.font({ family: family, pixelSize: 12 })
    readonly property font small: Qt.font({ family: family, pixelSize: 11 })
    readonly property font compact: Qt.font({ family: family, pixelSize: 10.5 }) // drawn at 10 where fonts come in whole pixels
    readonly property font pill: Qt.font({ family: family, pixelSize: 11, weight: Font.Medium })
    readonly property font eyebrow: Qt.font({ family: family, pixelSize: 11, weight: Font.DemiBold, letterSpacing: 0.9 })
    readonly property real lineHeight: 1.3

    // Windows and sheets
    readonly property size windowSize: Qt.size(1060, 740)
    readonly property size leastWindowSize: Qt.size(880, 640)
    readonly property int sidebarWidth: 248
    readonly property int leastSidebarWidth: 220
    readonly property int mostSidebarWidth: 280
    readonly property int pageWidth: 860
    readonly property int textWidth: 560
    readonly property int sheetWidth: 600
    readonly property int narrowSheetWidth: 520
    readonly property int questionWidth: 420
    readonly property int menuWidth: 200
    readonly property int mostMenuHeight: 320
    readonly property int mostToolTipWidth: 320

    // Parts of controls
    readonly property int hairline: 1
    readonly property int controlHeight: 32
    readonly property int rowHeight: 40
    readonly property int shownRows: 4 // of a list inside a sheet
    readonly property int buttonRadius: 9
    readonly property int smallRadius: 7
    readonly property int tileRadius: 10
    readonly property int cardRadius: 14
    readonly property int sheetRadius: 16
    readonly property int buttonSidePadding: 12
    readonly property int buttonPadding: 8
    readonly property int tileHeight: 46
    readonly property int swatch: 14
    readonly property int dot: 6
    readonly property int stepMark: 10
    readonly property int tinyIcon: 12
    readonly property int smallIcon: 14
    readonly property int icon: 16
    readonly property int mediumIcon: 20
    readonly property int largeIcon: 28
    readonly property int heroIcon: 44
    readonly property int iconButton: 28
    readonly property int switchWidth: 36
    readonly property int switchHeight: 20
    readonly property int progressHeight: 6
    readonly property int scrollBar: 6
    readonly property int focusWidth: 2
    readonly property int focusGap: 2
    readonly property int fieldWidth: 240
    readonly property int stepperWidth: 72
    readonly property int shadowSpread: 20

    // Lists of a backup's page
    readonly property int historyRowHeight: 60
    readonly property int emailWidth: 128
    readonly property int sizesWidth: 120
    readonly property int rowActionsWidth: 64
    readonly property int mostActivityHeight: 400

    // Opacities
    readonly property real opaque: 1
    readonly property real disabledOpacity: 0.42
    readonly property real secondaryFill: 0.055
    readonly property real activeFill: 0.13
    readonly property real focusedBorder: 0.85
    readonly property real activeBorder: 0.38
    readonly property real restBorder: 0.16
    readonly property real activeOverlay: 0.08
    readonly property real pressedOverlay: 0.16
    readonly property real menuFill: 0.04
    readonly property real menuBorder: 0.1
    readonly property real menuActiveBorder: 0.35
    readonly property real subtleFill: 0.075
    readonly property real tileFill: 0.025
    readonly property real tileHoverFill: 0.08
    readonly property real tileBorder: 0.12
    readonly property real tileHoverBorder: 0.45
    readonly property real tileSelectedBorder: 0.8
    readonly property real badgeFill: 0.09
    readonly property real sweepPart: 0.35
    readonly property real thumbFill: 0.25

    // Motion. A duration is nothing when motion is to be reduced.
    readonly property real pressedScale: reducedMotion ? 1 : 0.98
    readonly property int quick: reducedMotion ? 0 : 140
    readonly property int calm: reducedMotion ? 0 : 220
    readonly property int sweep: 1400
    readonly property int toolTipDelay: 700
    readonly property int toolTipTime: 8000
    readonly property int savedTime: 2000

    function accentOf(name: string): QtObject {
        return AppearanceState.accentOf(name);
    }

    /// A colour at an opacity.
    function faded(color: color, opacity: real): color {
        return Qt.rgba(color.r, color.g, color.b, color.a * opacity);
    }

    /// The colour of text and icons of a Tone.
    function toneColor(tone: int): color {
        switch (tone) {
        case Tone.Accent:
            return AppearanceState.accent.ink;
        case Tone.Good:
            return success;
        case Tone.Warning:
            return warning;
        case Tone.Alert:
            return alert;
        case Tone.Off:
            return faint;
        }
        return muted;
    }
}
