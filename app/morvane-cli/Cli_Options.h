// The command line of the terminal front end, parsed into plain values. Kept apart from main so that
// the parse rules stay small and readable.
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace morvane {

struct CliOptions {
    QStringList inputs; // files and folders, as given
    QString preset;
    QList<QPair<QString, QString>> sets; // --set FIELD=VALUE, in the order given
    QString output;                      // empty: the saved output folder
    QString effects;                     // --effects LIST: the effect list of every file
    bool merge = false;
    int parallel = 0;  // 0: one at a time
    int nameMode = -1; // -1 the saved rule, 0 overwrite, 1 rename
    bool listPresets = false;
    QString listQuery;
    bool testPresets = false; // --test-presets: every preset (or the QUERY's) tried on the first file
    QString testQuery;
    bool dryRun = false;
    bool verbose = false; // the encoders' own log on standard error
    bool help = false;
    bool version = false;
};

// Fills `options` from the arguments after the program name. Returns an empty text on success, or
// the reason the command line is unusable.
QString Cli_Parse(const QStringList& arguments, CliOptions& options);

QString Cli_HelpText(const QString& program);

} // namespace morvane
