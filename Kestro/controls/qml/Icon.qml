import QtQuick
import QtQuick.Layouts

// A named Lucide icon drawn in one colour.
Image {
    id: icon
    property string name
    property color color: "black"
    property int size: 16
    width: size
    height: size
    // The image's own size is twice the drawn one (sharp on any scale), so
    // layouts are told the drawn size.
    Layout.preferredWidth: size
    Layout.preferredHeight: size
    sourceSize.width: size * 2
    sourceSize.height: size * 2
    source: name ? "image://icon/" + name + "?color=" + encodeURIComponent(color.toString()) : ""
    fillMode: Image.PreserveAspectFit
    smooth: true
}
