// Folders of the user and of the program, and the file move and delete wrappers.
// Main thread only.
#pragma once

#include <QString>

namespace morvane {

// Ids of the user folders the program asks for.
enum SpecialFolder : int {
    CSIDL_PERSONAL = 5,   // documents
    CSIDL_MYVIDEO = 14,   // videos
    CSIDL_DESKTOP = 16,   // desktop
    CSIDL_APPDATA = 26,   // application data (the XDG data home)
    CSIDL_MYPICTURES = 39 // pictures
};

// The folder with a trailing "/", or "" when the desktop has no such folder on this machine.
QString Get_SpecialFolder(int folderId);

// Folder of the program's shipped resources (Preset, Skin, Libs), with a trailing "/".
QString Program_Folder();

// Creates the data folders and picks the input, last-disc, output and capture folders.
void Init_Folders();

// The folder that an empty output box stands for: the documents folder, or the desktop (at worst the
// home folder) on a machine without one. "" only when none of them exists.
QString Default_OutputFolder();

// Makes sure the folder in the output box exists, creating one level; an empty box becomes
// Default_OutputFolder(). On failure `reason` says why, naming the folder: a file stands in its place, its
// parent does not exist, or the system's words for why it cannot be made ("Permission denied").
bool Ensure_OutputFolder(QString& outputBoxText, QString& reason);

// "" when the path can be read (a folder also listed), else the system's words for why not, from
// stat and access: "No such file or directory", "Permission denied", "Not a directory".
QString Path_UnreadableReason(const QString& path);
// The errno behind that reason, 0 when the path can be read.
int Path_UnreadableError(const QString& path);

// "" on success, else the system's description of the failure.
QString Move_File(const QString& source, const QString& target);
// Deletes the file, read-only or not; failures are ignored.
void Delete_File(const QString& path);
// Deletes every "*.bmp" in Folder_Temp.
void Clear_TempPictures();

} // namespace morvane
