// What the catalogue suites share: tables written as the program's own "//" row text, the user folders
// pointed into a test's folder, and a log of the messages a test's actions show.
#pragma once

#include "CatalogueTable.h"
#include "Encrypt_Mod.h"
#include "Globals.h"
#include "Preset_Mods.h"
#include "mMain.h"

#include <QDir>
#include <QStringList>

#include <ostream>

// Readable QString values in failure messages.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace morvane::testkit {

inline const QStringList kFormatColumns = {
    "Format",   "VideoCodec", "AudioCodec",      "FrameSize",  "FPS",      "AspectRatio", "FileExtention",
    "MaxWidth", "MaxHeight",  "MaxVideoBitrate", "SampleRate", "Channels", "AudioSize"};
inline const QStringList kPresetColumns = {
    "ID",         "Name",     "Format",       "Keyword",      "Maker",         "Type",
    "Thumbnail",  "Image",    "Removable",    "VideoCodec",   "AudioCodec",    "Width",
    "Height",     "FPS",      "QualityLevel", "VideoBitrate", "FileExtention", "AspectRatio",
    "SampleRate", "Channels", "AudioSize",    "AudioBitrate"};

// The columns come only into an empty table, so that later calls add rows alone.
inline void addRows(CatalogueTable& table, const QStringList& columns, const QStringList& rows) {
    if (table.columnCount() == 0)
        for (const QString& name : columns)
            table.addColumn(name, 200);
    for (const QString& row : rows)
        Row_AddFromText(table, row, 0, true, 0);
}

// The user preset and favorites files below root, the temp folder made, and the key that deciphers
// the shipped tables.
inline void pointFolders(const QString& root) {
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    Folder_Temp = root + "/temp/";
    QDir().mkpath(Folder_Temp);
    Folder_UserPreset = root + "/user/presets/";
    File_UserPreset = "UserPreset.dat";
    Folder_UserFavorite = root + "/user/favorites/";
    File_UserFavorite = "Favorites.dat";
}

// Every message shown while it lives, as "title: text", each answered with `answer`.
class MessageLog {
public:
    MessageLog() {
        Set_MessageHandler([this](const QString& text, int, const QString& title, const QString&) {
            lines << (title.isEmpty() ? text : title + ": " + text);
            return answer;
        });
    }
    ~MessageLog() { Set_MessageHandler(nullptr); }
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    QStringList lines;
    int answer = ID_YES;
};

} // namespace morvane::testkit
