import QtQuick

// A named Lucide icon drawn in one colour.
Image {
    id: icon
    property string name
    property color color: "black"
    property int size: 16
    width: size
    height: size
    sourceSize.width: size * 2
    sourceSize.height: size * 2
    source: name ? "image://icon/" + name + "?color=" + encodeURIComponent(color.toString()) : ""
    fillMode: Image.PreserveAspectFit
    smooth: true
}
