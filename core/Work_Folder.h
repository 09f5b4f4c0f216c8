// The process's own working folder: catalogue files at start, merge lists, thumbnails and the like
// live in "<shared temporary folder>run-<pid>-<tag>/", so that two programs started at once never
// read or delete each other's files. A lock held for the life of the process marks it as in use; the
// folders of processes that died without cleaning up are removed by the next start.
// Main thread only.
#pragma once

#include <QString>

namespace morvane {

// Makes the folder under `sharedTemp` (created if need be) and returns it with a trailing "/", or ""
// when it cannot be made. Removes the folders of dead processes first. The folder goes at exit.
QString Work_Folder_Open(const QString& sharedTemp);
// Removes the folder now (also run at exit); the process has none afterwards.
void Work_Folder_Close();

} // namespace morvane
