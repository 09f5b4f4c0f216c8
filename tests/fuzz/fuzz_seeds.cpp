// Writes the text seeds of the fuzz targets from the shipped catalogue: slices of the format and
// preset tables, plain and enciphered with the line cipher; single enciphered lines; and the argument
// texts that the builder makes for the shipped presets.
//
// fuzz_seeds DATA_DIR OUT_DIR  (OUT_DIR gets table/, line/ and options/)
#include "CatalogueTable.h"
#include "Effects_Mods.h"
#include "Encrypt_Mod.h"
#include "Make_EncoderArgs.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QStringList>

#include <cstdio>

using namespace morvane;

namespace {

bool writeSeed(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QStringList readLines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// The header and a few records from the middle: small enough for the fuzzer to mutate quickly.
QByteArray tableSlice(const QStringList& lines, int first, int count, bool enciphered) {
    QByteArray bytes;
    QStringList slice{lines.at(0)};
    slice += lines.mid(first, count);
    for (const QString& line : slice)
        bytes += (enciphered ? Line_Encipher(line) : line).toUtf8() + "\r\n";
    return bytes;
}

QString cellOf(const CatalogueTable& table, qsizetype row, const char* column) {
    return table.cell(row, table.columnIndex(QString::fromLatin1(column)));
}

// The builder's inputs for a 320 x 240 source at 25 fps and one preset record.
EncoderParams paramsOf(const CatalogueTable& presets, qsizetype row) {
    EncoderParams p;
    p.SrcWidth = p.EditedWidth = 320;
    p.SrcHeight = p.EditedHeight = 240;
    p.SrcFrameRate = 25;
    p.SrcAspect = QStringLiteral("1.33");
    p.OutWidth = cellOf(presets, row, "Width").toInt();
    p.OutHeight = cellOf(presets, row, "Height").toInt();
    p.FrameRateText = cellOf(presets, row, "FPS").remove(QLatin1Char('#'));
    p.AspectMode = cellOf(presets, row, "AspectRatio");
    p.VideoCodec = cellOf(presets, row, "VideoCodec");
    p.Quality = 2;
    p.AudioCodec = cellOf(presets, row, "AudioCodec");
    p.Format = cellOf(presets, row, "Format").toUpper();
    const QString channels = cellOf(presets, row, "Channels");
    p.Channels = channels == QLatin1String("Mono") ? 0 : channels == QLatin1String("Stereo") ? 1 : 2;
    p.AudioBitrate = cellOf(presets, row, "AudioBitrate").remove(QStringLiteral(" kbps"));
    p.SampleRate = cellOf(presets, row, "SampleRate").remove(QStringLiteral(" Hz"));
    p.BitDepth = cellOf(presets, row, "AudioSize");
    p.PadColor = QStringLiteral("black");
    p.TrimStartLow = QString::number(row % 3 * 1500000);
    p.TrimStartHigh = QStringLiteral("0");
    p.TrimEndLow = QString::number(10000000 + row * 250000);
    p.TrimEndHigh = QStringLiteral("0");
    p.CropTop = row % 4 == 1 ? 8 : 0;
    p.PadLeft = row % 5 == 2 ? 16 : 0;
    p.Deinterlace = row % 2 == 0 ? QStringLiteral("1") : QStringLiteral("0");
    return p;
}

// The first byte of an options seed picks the output extension, as encoder_options_fuzz reads it.
char extensionByte(const QString& extension) {
    static const QStringList known{"mp4", "mkv", "avi", "ts", "mp3", "wav", "flv", "3gp"};
    const qsizetype index = known.indexOf(extension.toLower());
    return static_cast<char>(index < 0 ? 8 : index);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fuzz_seeds DATA_DIR OUT_DIR\n");
        return 2;
    }
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    Set_MessageHandler([](const QString& text, int, const QString&, const QString&) {
        std::fprintf(stderr, "fuzz_seeds: %s\n", qPrintable(text));
        return int(ID_OK);
    });
    const QDir data(QString::fromLocal8Bit(argv[1]));
    const QDir out(QString::fromLocal8Bit(argv[2]));
    for (const char* sub : {"table", "line", "options", "effects"})
        if (!out.mkpath(QString::fromLatin1(sub))) return 1;

    int written = 0;
    bool ok = true;
    const auto seed = [&](const QString& name, const QByteArray& bytes) {
        ok = writeSeed(out.filePath(name), bytes) && ok;
        ++written;
    };

    for (const char* base : {"format", "preset"}) {
        const QStringList lines =
            readLines(data.filePath(QString::fromLatin1(base) + QStringLiteral(".txt")));
        if (lines.size() < 2) return 1;
        for (int first = 1, n = 0; first < lines.size(); first += lines.size() / 4 + 1, ++n) {
            // First byte: bit 0 enciphered, bit 1 append, bit 2 all or nothing, as table_load_fuzz
            // reads it.
            for (const char mode : {0, 1, 2, 3, 4, 5, 6, 7}) {
                const QString name =
                    QStringLiteral("table/%1-%2-%3").arg(QLatin1String(base)).arg(n).arg(int(mode));
                seed(name, QByteArray(1, mode) + tableSlice(lines, first, 3, mode & 1));
            }
            seed(QStringLiteral("line/%1-%2").arg(QLatin1String(base)).arg(n),
                 Line_Encipher(lines.at(first)).toUtf8());
        }
        seed(QStringLiteral("line/%1-header").arg(QLatin1String(base)), Line_Encipher(lines.at(0)).toUtf8());
    }

    CatalogueTable presets;
    Table_LoadFile(presets, data.filePath(QStringLiteral("preset.txt")), TableLoad_Replace, false);
    QSet<QString> seen;
    for (qsizetype row = 0; row < presets.rowCount(); ++row) {
        const QString arguments = Make_EncoderArgs(paramsOf(presets, row));
        if (arguments == QLatin1String("-1") || seen.contains(arguments)) continue;
        seen.insert(arguments);
        const char extension = extensionByte(cellOf(presets, row, "FileExtention"));
        seed(QStringLiteral("options/preset-%1").arg(row), QByteArray(1, extension) + arguments.toUtf8());
    }
    for (const char* seek : {" -ss 1.5", " -ss 00:01:02.250", " -ss 0"})
        seed(QStringLiteral("options/seek-%1").arg(written), QByteArray(1, 0) + seek);

    // Effect lists: each effect at its defaults on frames of a few sizes, and with a token to put in.
    for (const EffectRow& row : EffectRows()) {
        const QByteArray token = DefaultEffectToken(row.name, 40).toUtf8();
        seed(QStringLiteral("effects/%1").arg(written), QByteArray("\x07\x05\x01", 3) + token + ',');
        seed(QStringLiteral("effects/%1").arg(written), QByteArray("\x21\x02\x03", 3) + "Brightness:-40," +
                                                            token + ",FlipH" + QByteArray(1, '\0') + "-" +
                                                            token);
    }

    std::printf("fuzz_seeds: %d seeds in %s\n", written, argv[2]);
    return ok && !presets.columns().isEmpty() ? 0 : 1;
}
