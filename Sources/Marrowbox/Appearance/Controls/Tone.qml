import QtQuick
import Marrowbox.Appearance

// What a line, a pill or a banner wants to say with its colour.
QtObject {
    enum Kind { Neutral, Accent, Good, Warning, Alert, Off }
}
