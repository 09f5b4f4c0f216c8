// Hand-made rows for the tests of output names: a Name over a source file in /videos/, with one edit
// value set, so that a test can see which cells a rename touches.
#pragma once

#include "FileViewMain.h"

#include <QStringList>

inline void addRow(morvane::FileViewMain& table, const QString& name, const QString& fileName) {
    const int r = table.addRow();
    table.setText(r, morvane::FileCol::Name, name);
    table.setText(r, morvane::FileCol::FilePath, QStringLiteral("/videos/"));
    table.setText(r, morvane::FileCol::FileName, fileName);
    table.setText(r, morvane::FileCol::CropTop, QStringLiteral("8"));
}

inline QStringList names(const morvane::FileViewMain& table) {
    QStringList out;
    for (int r = 0; r < table.rows(); ++r)
        out.append(table.text(r, morvane::FileCol::Name));
    return out;
}
