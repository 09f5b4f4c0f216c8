// Probing through the FFmpeg-based reader over arbitrary bytes. The first byte picks the file's
// extension and, with its top bit, the disc import's probe mode; the rest is the file.
#include "FFDecoder.h"
#include "FileList_Mods.h"
#include "FuzzSupport.h"
#include "Globals.h"
#include "Report_List.h"
#include "mMain.h"

extern "C" {
#include <libavutil/log.h>
}

#include <QDir>

using namespace morvane;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    av_log_set_level(AV_LOG_QUIET);
    Folder_Temp = fuzz::scratch().filePath(QStringLiteral("temp")) + QLatin1Char('/');
    QDir().mkpath(Folder_Temp);
    Set_MessageHandler([](const QString&, int, const QString&, const QString&) { return int(ID_OK); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static const char* const extensions[] = {"mp4", "mkv", "ts", "avi", "mp3", "wav", "mpg", "vob"};
    const int mode = (data[0] & 0x80) != 0 ? kFillMode_Disc : 0;
    const QString name =
        QStringLiteral("input.") + QLatin1String(extensions[(data[0] & 0x7F) % std::size(extensions)]);
    const QString path = fuzz::writeInput(name, data + 1, size - 1);

    static const std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
    FileViewMain table;
    Report_Clear();
    Fill_Item(path, mode, table, *decoder);

    // One row or at most one report line, never both.
    fuzz::require(table.rows() + Report_Entries().size() <= 1);
    for (int row = 0; row < table.rows(); ++row) {
        const QString thumbnail = table.text(row, FileCol::Thumbnail);
        if (!thumbnail.isEmpty()) fuzz::require(QFile::remove(thumbnail));
    }
    Report_Clear();
    QFile::remove(path);
    return 0;
}
