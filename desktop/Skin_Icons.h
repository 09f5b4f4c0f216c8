// Icons and pictures by role. A role is the skin's image file name without its extension
// ("img_addfile", "img_convert", "img_dragmedia" ...). Where the desktop's icon theme has a standard
// icon for the role it is used; every other role, and every role on a desktop without an icon theme,
// gets our own drawing, coloured for the current theme (Theme_No: 1 Light, 2 Dark). Main thread only
// (QPixmap).
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>
#include <QStringList>

namespace morvane {

// Every role that Skin_Icon knows, in the order of the skin's image list.
QStringList Skin_Roles();

// The icon of a role; never null (an unknown role gets a neutral placeholder).
QIcon Skin_Icon(const QString& role);

// A picture of a role at the given size, for picture boxes (the drop hint "img_dragmedia").
QPixmap Skin_Picture(const QString& role, QSize size);

// The list's state icons by image number: 1..9 the running cycle, 10 done, 11 failed, 12 ready,
// 13 canceled, 14 the edit mark; 0 and anything else is an empty icon.
QIcon Skin_StateIcon(int image);

// Icons of the shared icon store by number: 5 Convert Now, 7 Pause, 34 Resume, 10 the failure
// report, 41 the copy-protection report. Any other number maps to a neutral placeholder.
QIcon Skin_StoreIcon(int number);

// Drops every cached icon. The cache is keyed by role and Theme_No, so a theme switch shows without it;
// call it then to free the other theme's icons, and after the desktop's icon theme changed.
void Skin_ClearCache();

} // namespace morvane
