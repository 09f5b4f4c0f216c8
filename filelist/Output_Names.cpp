#include "Output_Names.h"

#include "File_Names.h"
#include "mMain.h"

#include <QFileInfo>

namespace morvane {

namespace {

QString capitalizeWords(const QString& value) {
    QString result;
    for (const QString& word : value.split(QLatin1Char(' '))) {
        if (word.isEmpty())
            result += QLatin1Char(' '); // two blanks in a row stay two
        else
            result += word.left(1).toUpper() + word.mid(1).toLower() + QLatin1Char(' ');
    }
    return Trim_Spaces(result);
}

QString renamed(const FileViewMain& table, int row, int operation, const QString& value) {
    switch (operation) {
    case Rename_Capitalize:
        return capitalizeWords(value);
    case Rename_Sentence:
        return value.left(1).toUpper() + value.mid(1).toLower();
    case Rename_Lower:
        return value.toLower();
    case Rename_Upper:
        return value.toUpper();
    case Rename_Numbers:
        if (Rename_FirstNumber < 0) return value;
        return QString::number(static_cast<std::int64_t>(Rename_FirstNumber) + row);
    case Rename_AddBefore:
        return Rename_Prefix + value;
    case Rename_AddAfter:
        return value + Rename_Suffix;
    case Rename_Replace: {
        if (Rename_FindText.isEmpty()) return value;
        QString result = value;
        result.replace(Rename_FindText, Rename_ReplaceText, Qt::CaseInsensitive);
        return Trim_Spaces(result).isEmpty() ? Source_BaseName(table, row) : result;
    }
    case Rename_Reset:
        return Source_BaseName(table, row);
    default:
        return value;
    }
}

} // namespace

QString Unique_OutputName(const QString& path) {
    const QString extension = File_ExtensionName(path);
    const QString base = File_BaseName(path);
    const QString parent = File_ParentFolder(path);
    if (!QFileInfo(parent).isDir() || !QFileInfo::exists(path)) return path;

    const auto candidate = [&](const QString& number) {
        return parent + base + QString(kNewNameTemplate).replace(QStringLiteral("%n"), number) +
               QLatin1Char('.') + extension;
    };
    QString free = candidate(QString());
    for (std::int64_t n = 1; QFileInfo::exists(free); ++n)
        free = candidate(QLatin1Char('_') + QString::number(n));
    return free;
}

QString Replace_Extension(const QString& path, const QString& extension) {
    return File_ParentFolder(path) + File_BaseName(path) + QLatin1Char('.') + extension;
}

QString Source_BaseName(const FileViewMain& table, int row) {
    return File_BaseName(table.text(row, FileCol::FilePath) + table.text(row, FileCol::FileName));
}

void Rename_All(FileViewMain& table, int operation, int column, RenameDialogs& dialogs) {
    switch (operation) {
    case Rename_Replace:
        Rename_FindText.clear();
        Rename_ReplaceText.clear();
        dialogs.Show_Replace();
        break;
    case Rename_AddBefore:
        Rename_Prefix.clear();
        dialogs.Show_AddBefore();
        break;
    case Rename_AddAfter:
        Rename_Suffix.clear();
        dialogs.Show_AddAfter();
        break;
    case Rename_Numbers:
        Rename_FirstNumber = -1;
        dialogs.Show_Numbers();
        break;
    default:
        break;
    }
    if (table.rows() == 0) return;
    for (int row = 0; row < table.rows(); ++row)
        table.setText(row, column, renamed(table, row, operation, table.text(row, column)));
    table.redraw();
}

void Rename_Selected(FileViewMain& table, RenameDialogs& dialogs) {
    if (table.selectedRows().isEmpty()) return;
    const int row = table.selectedRows().first();
    Rename_NewName = table.text(row, FileCol::Name);
    dialogs.Show_Rename();
    if (Trim_Spaces(Rename_NewName).isEmpty()) return;
    table.setText(row, FileCol::Name, Rename_NewName);
    table.redraw();
}

} // namespace morvane
