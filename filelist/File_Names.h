// Path pieces as the list uses them: the base name keeps every dotted part but the last, the folder
// always ends in "/". Pure functions; any thread.
#pragma once

#include <QString>

namespace morvane {

// "clip.final" of ".../clip.final.mp4"; "" of ".hidden".
QString File_BaseName(const QString& path);
// "mp4" of ".../clip.final.mp4"; "" without a dot.
QString File_ExtensionName(const QString& path);
// The absolute parent folder with a trailing "/".
QString File_ParentFolder(const QString& path);
// Base name + "." + extension, the form of the failure report's names.
QString File_ReportName(const QString& path);

} // namespace morvane
