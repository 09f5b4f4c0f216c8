// Opens a folder in the desktop's file manager, or shows a file selected in its folder where the
// file manager offers that (the freedesktop FileManager1 service). Main thread only.
#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

class QWidget;

namespace morvane {

// A missing folder with `ask` set is offered for creation first; No ends there. Failures of the
// desktop are silent.
void Open_Folder(QWidget* window, const QString& path, bool select, bool ask);

// What Open_Folder runs, replaceable for tests: a detached program and a URL for the desktop.
struct FolderLaunchers {
    std::function<bool(const QString& program, const QStringList& arguments)> runProgram;
    std::function<bool(const QUrl& url)> openUrl;
};
void Set_FolderLaunchers(FolderLaunchers launchers); // empty members restore the desktop's own

} // namespace morvane
