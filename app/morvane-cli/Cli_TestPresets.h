// --test-presets: the diagnostics window's preset test without a window. Each preset converts the one
// file under test into a folder of the process's work folder, which is emptied after every step, so
// the user's folders get nothing. The failing presets go to standard output with their reason, then
// the count. Main thread only.
#pragma once

#include "Catalogue.h"
#include "FileViewMain.h"
#include "FormatSetting.h"
#include "OutputBrowser.h"
#include "VideoConverter_Mods.h"

#include <QList>
#include <QString>

#include <functional>

namespace morvane {

struct CliPresetTest {
    Catalogue& catalogue;
    FormatSetting& settings;
    OutputBrowser& browser;
    FileViewMain& table; // the file under test, alone
    VideoConverter& converter;
    QList<qsizetype> rows;             // the preset table's rows to test, 1-based
    std::function<bool()> interrupted; // a stop signal came
    std::function<void(const QString&)> out, err;
    std::function<void(const QString&)> live; // the preset now under test
};

// "Name   reason" per failing preset and "N of M presets failed" on `out`. Returns the exit status: 0
// when none failed, 1 when some failed, the run was stopped, or the test folder cannot be made.
int Cli_TestPresets(const CliPresetTest& test);

} // namespace morvane
