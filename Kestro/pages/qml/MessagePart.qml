import QtQuick

// A part of a message made only when the message has it (its task, its
// reactions, its thread...). What it loads reads the message through
// `owner`: the loader is the loaded item's parent before any binding runs.
Loader {
    property var owner
    // A part the message lacks takes no room.
    visible: active
}
