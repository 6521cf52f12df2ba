#pragma once

#include "MarkdownBlock.h"

#include <QStringList>

#include <optional>

namespace Kestro::MarkdownParser {

// Turns a Markdown text into its blocks: a line-based grammar close to
// CommonMark but smaller (no indented code, no HTML blocks, no reference
// definitions, no loose lists, no table alignment). Pure; no state kept.
std::vector<MarkdownBlock> parse(const QString& text);

// The parts, for the recursion and for tests.
std::vector<MarkdownBlock> parseLines(const QStringList& lines);

struct Marker {
    bool ordered = false;
    QChar symbol;   // "-", "*", "+", "." or ")"
    int number = 1; // 1 for bullets
    int width = 0;  // the content column
    QString rest;   // the line after the marker, surplus spaces put back
};
std::optional<Marker> parseMarker(const QString& line);
bool startsBlock(const QString& line);
QStringList splitTableRow(const QString& line);

} // namespace Kestro::MarkdownParser
