// Pictures of the browser's group buttons, drawn here from the Thumbnail identifier that every preset
// row carries ("fmt_mp4", "dev_iphone", "aud_mp3", "web_youtube" ...). One look per family: video
// formats a film tile, audio formats a waveform tile, web formats a screen (stood on end for vertical
// video), devices a silhouette of their kind over a name badge; each with a short bold label. Coloured
// for the current theme (Theme_No: 1 Light, anything else Dark). Main thread only.
#pragma once

#include <QPixmap>
#include <QSize>
#include <QString>
#include <QStringList>

namespace morvane {

// The picture of a group at the given size, transparent around the drawing. The identifier is taken
// trimmed and case ignored, and a file extension ("fmt_mp4.png") is dropped. An unknown identifier
// gets a neutral tile with its first letters; an empty size gives a null pixmap. Cached by identifier,
// size and Theme_No, so a theme switch draws anew while switching back finds the old picture again.
QPixmap Group_Picture(const QString& thumbnail, QSize size);

// Every identifier that has a drawing of its own, in the order of the shipped catalogue.
QStringList Group_PictureIds();

// Drops every cached picture (to free the other theme's, or after the application font changed).
void Group_ClearCache();

} // namespace morvane
