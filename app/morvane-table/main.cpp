// morvane-table: enciphers and deciphers lines and table files with the catalogue's line cipher.
// The build uses it to encipher the keyed constant block and the shipped tables; people use it to
// read and write table files by hand.

#include "Encrypt_Mod.h"
#include "Table_Io.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

using namespace morvane;

namespace {

int fail(const QString& message) {
    std::fprintf(stderr, "morvane-table: %s\n", message.toUtf8().constData());
    return 1;
}

// Standard output may be a file on a full disk: a short write is a failure, not a success.
int printOut(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    if (std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
            static_cast<size_t>(bytes.size()) &&
        std::fflush(stdout) == 0)
        return 0;
    return fail(QStringLiteral("cannot write the output: ") + QString::fromLocal8Bit(std::strerror(errno)));
}

int usage() {
    std::fprintf(stderr,
                 "Usage:\n"
                 "  morvane-table encipher-line TEXT       print the enciphered line in hexadecimal\n"
                 "  morvane-table decipher-line HEX        print the text of an enciphered line\n"
                 "  morvane-table encode PLAIN_FILE OUT    encipher a table file line by line\n"
                 "  morvane-table decode FILE              print the plain table file\n"
                 "  morvane-table constant-block PLAIN OUT write the keyed constant block as C++ source\n");
    return 2;
}

bool readFile(const QString& path, QByteArray& contents, QString& error) {
    const QString reason = Read_TableBytes(path, contents);
    if (!reason.isEmpty()) error = QStringLiteral("cannot read '%1': %2").arg(path, reason);
    return reason.isEmpty();
}

// All or nothing: a failure (a full disk) leaves no partial file and keeps an older one whole.
bool writeFile(const QString& path, const QByteArray& contents, QString& error) {
    const QString reason = Write_TableBytes(path, contents);
    if (!reason.isEmpty()) error = QStringLiteral("cannot write '%1': %2").arg(path, reason);
    return reason.isEmpty();
}

// Lines ended by CR LF (or a bare LF from a hand-edited file); a final line end adds no line.
QStringList splitLines(const QByteArray& contents) {
    QString text = QString::fromUtf8(contents);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    return lines;
}

// A line that the cipher really produced: an even count of hex digits, at least one byte of text.
// A plain loop: a pattern match backtracks on every pair and gives up on lines of megabytes.
QString checkHex(const QString& hex) {
    QString digits = hex.trimmed();
    if (digits.startsWith(QStringLiteral("&H"), Qt::CaseInsensitive)) digits = digits.mid(2);
    if (digits.size() % 2 != 0)
        return QStringLiteral("the hexadecimal text has an odd number of digits (%1)").arg(digits.size());
    const auto isHexDigit = [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'F') || (u >= 'a' && u <= 'f');
    };
    if (!std::all_of(digits.cbegin(), digits.cend(), isHexDigit))
        return QStringLiteral("the text is not hexadecimal");
    if (digits.size() < 18)
        return QStringLiteral("the line is too short to be enciphered (%1 digits)").arg(digits.size());
    return QString();
}

// Deciphers one line, or says why it is no enciphered line.
bool decipherChecked(const QString& hex, QString& text, QString& error) {
    error = checkHex(hex);
    if (!error.isEmpty()) return false;
    StopProcessing = false;
    text = Line_Decipher(hex);
    if (StopProcessing) {
        error = QStringLiteral("the line does not decipher");
        return false;
    }
    return true;
}

int encode(const QString& plainPath, const QString& outPath) {
    QByteArray contents;
    QString error;
    if (!readFile(plainPath, contents, error)) return fail(error);
    QByteArray out;
    for (const QString& line : splitLines(contents)) {
        out += Line_Encipher(line).toLatin1();
        out += "\r\n";
    }
    return writeFile(outPath, out, error) ? 0 : fail(error);
}

int decode(const QString& path) {
    QByteArray contents;
    QString error;
    if (!readFile(path, contents, error)) return fail(error);
    const QStringList lines = splitLines(contents);
    QString out;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString text;
        // An empty line stands for an empty record; anything else must decipher.
        if (!lines.at(i).trimmed().isEmpty() && !decipherChecked(lines.at(i), text, error))
            return fail(QStringLiteral("%1, line %2: %3").arg(path).arg(i + 1).arg(error));
        out += text + QStringLiteral("\r\n");
    }
    return printOut(out);
}

// The block is kept as two literals that the program joins, so that no single literal grows too long.
int constantBlock(const QString& plainPath, const QString& outPath) {
    QByteArray contents;
    QString error;
    if (!readFile(plainPath, contents, error)) return fail(error);
    const QString block = Line_Encipher(splitLines(contents).join(QStringLiteral("\r\n")));
    if (block.isEmpty()) return fail(QStringLiteral("'%1' holds no constants").arg(plainPath));
    const qsizetype half = (block.size() / 4) * 2;
    QByteArray source = "// Generated by morvane-table from the plain constants; do not edit.\n"
                        "namespace morvane {\n";
    source += "extern const char ConstantBlock_Head[] = \"" + block.left(half).toLatin1() + "\";\n";
    source += "extern const char ConstantBlock_Tail[] = \"" + block.mid(half).toLatin1() + "\";\n";
    source += "} // namespace morvane\n";
    return writeFile(outPath, source, error) ? 0 : fail(error);
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    const QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) return usage();
    const QString& command = args.first();
    if (command == QLatin1String("encipher-line") && args.size() == 2) {
        const QString hex = Line_Encipher(args.at(1));
        if (hex.isEmpty() && !args.at(1).isEmpty())
            return fail(QStringLiteral("the text could not be enciphered"));
        return printOut(hex + QLatin1Char('\n'));
    }
    if (command == QLatin1String("decipher-line") && args.size() == 2) {
        QString text;
        QString error;
        if (!decipherChecked(args.at(1), text, error)) return fail(error);
        return printOut(text + QLatin1Char('\n'));
    }
    if (command == QLatin1String("encode") && args.size() == 3) return encode(args.at(1), args.at(2));
    if (command == QLatin1String("decode") && args.size() == 2) return decode(args.at(1));
    if (command == QLatin1String("constant-block") && args.size() == 3)
        return constantBlock(args.at(1), args.at(2));
    return usage();
}
