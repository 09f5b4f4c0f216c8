// Output names: the collision-free target path and the bulk edits of the Name column. The five small
// rename dialogs are reached through an interface and hand back their results in the process-wide
// values below. Main thread only.
#pragma once

#include "FileViewMain.h"

#include <QSet>
#include <QString>

#include <cstdint>

namespace morvane {

// Results of the rename dialogs. Find and replace both empty mean Cancel; a first number of -1 too.
inline QString Rename_FindText;
inline QString Rename_ReplaceText;
inline QString Rename_Prefix;
inline QString Rename_Suffix;
inline QString Rename_NewName;
inline std::int32_t Rename_FirstNumber = -1;

enum RenameOperation : int {
    Rename_Capitalize = 1,
    Rename_Sentence = 2,
    Rename_Lower = 3,
    Rename_Upper = 4,
    Rename_Numbers = 5,
    Rename_AddBefore = 6,
    Rename_AddAfter = 7,
    Rename_Replace = 8,
    Rename_Reset = 9,
};

// The modal dialogs; each writes its value (OK, trimmed) or empties it (Cancel).
class RenameDialogs {
public:
    virtual ~RenameDialogs() = default;
    virtual void Show_Replace() = 0;   // Rename_FindText, Rename_ReplaceText
    virtual void Show_AddBefore() = 0; // Rename_Prefix
    virtual void Show_AddAfter() = 0;  // Rename_Suffix
    virtual void Show_Numbers() = 0;   // Rename_FirstNumber
    virtual void Show_Rename() = 0;    // Rename_NewName, left as it was on Cancel
};

// The path as given when its folder or the file itself doesn't exist, else the first free one of
// base_(new), base_(new_1), base_(new_2) ... Names in `taken` (by Path_Key) count as existing files.
QString Unique_OutputName(const QString& path, const QSet<QString>& taken = {});

// One spelling per file: the absolute path through the real folders (links resolved), so that two
// spellings of one place compare equal.
QString Path_Key(const QString& path);

// The output path of one item of a batch. `taken` holds the keys of every input of the batch and of
// the outputs given out before; a name in it, or the item's own input, is never used, whatever the
// naming rule. Beyond that, `renameExisting` (automatic renaming) also passes over files on disk.
QString Batch_OutputName(const QString& path, const QString& input, const QSet<QString>& taken,
                         bool renameExisting);
// Parent folder with "/", base name, ".", the extension given.
QString Replace_Extension(const QString& path, const QString& extension);

// Applies the operation to the column (always 1) of every row, in table order.
void Rename_All(FileViewMain& table, int operation, int column, RenameDialogs& dialogs);
// The rename of the first selected row through the single rename dialog.
void Rename_Selected(FileViewMain& table, RenameDialogs& dialogs);

// Base name of the source file of a row (columns 7 and 6), the name a reset gives back.
QString Source_BaseName(const FileViewMain& table, int row);

} // namespace morvane
