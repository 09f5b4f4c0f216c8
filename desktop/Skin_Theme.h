// The application's look for a theme number: 1 Light, 2 Dark. One style and one palette for every
// window, so that our own icon drawings (coloured by Theme_No) always stand on the matching ground.
#pragma once

class QApplication;

namespace morvane {

void Apply_Theme(QApplication& app, int themeNo);

} // namespace morvane
