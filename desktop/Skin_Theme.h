// The application's look for a theme number: 1 Light, 2 Dark. One palette and one style sheet per
// theme for every window, so that our own icon drawings (coloured by Theme_No) always stand on the
// matching ground. The sheets are built in; a "style.qss" in the theme's skin folder is added after
// them, so that a user can adjust a theme without a new build.
#pragma once

#include <QString>

class QApplication;

namespace morvane {

// The skin folder of the current theme, with a trailing "/": Folder_Data + "Skin/Light/" or
// "Skin/Dark/". Set by Apply_Theme.
inline QString Folder_Skin;

enum ThemeResult : int {
    Theme_Ok = 0,
    Theme_Missing = 1, // a sheet is missing, empty or unreadable
    Theme_Denied = 70, // the user's skin folder or sheet may not be read
};

// The style sheet of a theme: the built-in sheet followed by the user's additions. Theme_Ok on success.
int Theme_StyleSheet(int themeNo, QString& styleSheet);

// Applies palette and style sheet of the theme and drops the cached icons. Any theme number other than
// 1 and 2 leaves the look as it is. On a failure the palette stays applied and the result says why.
int Apply_Theme(QApplication& app, int themeNo);

// Tells the user why a theme could not be applied.
void Theme_ShowFailure(int result);

// Where the built-in sheets are read from; tests point it elsewhere. The default is ":/skin/".
void Theme_SetSheetRoot(const QString& root);

} // namespace morvane
