#include "Output_Names.h"

#include "File_Names.h"
#include "Output_File.h"
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

QString Unique_OutputName(const QString& path, const QSet<QString>& taken) {
    const bool folderExists = QFileInfo(File_ParentFolder(path)).isDir();
    const auto isTaken = [&](const QString& candidate) {
        return (folderExists && QFileInfo(candidate).exists()) ||
               (!taken.isEmpty() && taken.contains(Path_Key(candidate)));
    };
    if (!isTaken(path)) return path;
    const std::string wanted = path.toStdString();
    for (int attempt = 0;; ++attempt) {
        const QString free = QString::fromStdString(Free_NameCandidate(wanted, attempt));
        if (!isTaken(free)) return free;
    }
}

QString Path_Key(const QString& path) {
    const QFileInfo info(path);
    const QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty()) return canonical;
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? info.absoluteFilePath() : folder + QLatin1Char('/') + info.fileName();
}

QString Batch_OutputName(const QString& path, const QString& input, const QSet<QString>& taken,
                         bool renameExisting) {
    const QString key = Path_Key(path);
    const bool clash = taken.contains(key) || key == Path_Key(input);
    if (!clash && !renameExisting) return path;
    QSet<QString> blocked = taken;
    blocked.insert(Path_Key(input));
    // A name that only the batch holds is passed over even where no file stands yet.
    if (clash) blocked.insert(key);
    return Unique_OutputName(path, blocked);
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
