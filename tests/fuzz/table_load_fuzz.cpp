// Table_LoadFile and Table_LoadWhole over arbitrary file bytes. The first byte picks the form: bit 0
// enciphered, bit 1 append to a table that already holds four of the format table's columns and one
// record, bit 2 the all-or-nothing load.
#include "CatalogueTable.h"
#include "Encrypt_Mod.h"
#include "FuzzSupport.h"
#include "Table_Files.h"
#include "mMain.h"

using namespace morvane;

namespace {

int messages = 0;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    Set_MessageHandler([](const QString&, int, const QString&, const QString&) {
        ++messages;
        return int(ID_OK);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const bool enciphered = (data[0] & 1) != 0;
    const bool append = (data[0] & 2) != 0;
    const bool whole = (data[0] & 4) != 0;
    const QString path = fuzz::writeInput(QStringLiteral("table.dat"), data + 1, size - 1);

    CatalogueTable table;
    if (append) {
        for (const char* name : {"Format", "VideoCodec", "AudioCodec", "FileExtention"})
            table.addColumn(QString::fromLatin1(name), 200);
        const qsizetype row = table.addRecord();
        table.setCell(row, 0, QStringLiteral("MP4"));
    }
    const qsizetype columnsBefore = table.columnCount();
    const qsizetype rowsBefore = table.rowCount();
    const QList<QStringList> recordsBefore = table.records();
    const int mode = append ? TableLoad_Append : TableLoad_Replace;
    StopProcessing = false;
    messages = 0;
    if (whole) {
        // Nothing shown; a refusal says why and leaves the table as it was.
        const QString refusal = Table_LoadWhole(table, path, mode, enciphered);
        fuzz::require(messages == 0);
        if (!refusal.isEmpty()) {
            fuzz::require(table.columnCount() == columnsBefore);
            fuzz::require(table.records() == recordsBefore);
        }
    } else {
        Table_LoadFile(table, path, mode, enciphered);
        // A load either ends normally and refreshes the table once, or shows one message.
        fuzz::require((messages == 0) == (table.refreshCount() == 1));
        fuzz::require(messages <= 1);
    }
    if (append) {
        fuzz::require(table.columnCount() == columnsBefore);
        fuzz::require(table.rowCount() >= rowsBefore);
    }
    for (const QStringList& record : table.records())
        fuzz::require(record.size() == table.columnCount());
    return 0;
}
