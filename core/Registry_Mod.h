// The per-user settings store: an INI file under the XDG configuration folder, at the path named by
// REGISTRY_PRODUCT, every value a string. Main thread only.
#pragma once

#include <QDate>
#include <QString>

namespace morvane {

// The six general settings, as Load_Settings leaves them.
inline int Close_Event = 0;        // 0 ask, 1 minimise to the tray, 2 exit
inline bool Close_DontAsk = false; // the close question is not asked again
inline bool Update_Active = true;
inline QDate Update_LastTime;
inline int Output_NameMode = 1; // 0 overwrite, 1 rename
inline int Theme_No = 2;        // 1 Light, 2 Dark

// Path of the INI file that holds the settings.
QString Settings_FilePath(const QString& keyPath);

// The stored text, "" when the key or value is absent or the store cannot be read.
QString Read_Setting(const QString& keyPath, const QString& valueName);
// Stores the text; false when the store cannot be written.
bool Write_Setting(const QString& keyPath, const QString& valueName, const QString& text);

void Load_Settings();
void Save_Settings();

} // namespace morvane
