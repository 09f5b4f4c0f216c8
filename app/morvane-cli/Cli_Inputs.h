// The files a terminal run converts, gathered from the paths on the command line, and the paths that
// cannot be read, each with the system's reason.
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace morvane {

struct CliInputs {
    QStringList files;                      // supported files, absolute, in the order given
    QList<QPair<QString, QString>> refused; // path and why it cannot be read
    QStringList skipped;                    // files given by name that are no supported type
};

// Folders are walked recursively in name order; their unsupported files are passed over in silence,
// their unreadable files and subfolders are refused.
CliInputs Cli_CollectInputs(const QStringList& inputs);

} // namespace morvane
