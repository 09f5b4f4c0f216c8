// Table_LoadFile over arbitrary file bytes. The first byte picks the form: bit 0 enciphered, bit 1
// append to a table that already holds the format table's columns and one record.
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
    StopProcessing = false;
    messages = 0;
    Table_LoadFile(table, path, append ? TableLoad_Append : TableLoad_Replace, enciphered);

    // A load either ends normally and refreshes the table once, or shows one message.
    fuzz::require((messages == 0) == (table.refreshCount() == 1));
    fuzz::require(messages <= 1);
    if (append) {
        fuzz::require(table.columnCount() == columnsBefore);
        fuzz::require(table.rowCount() >= rowsBefore);
    }
    for (const QStringList& record : table.records())
        fuzz::require(record.size() == table.columnCount());
    return 0;
}
