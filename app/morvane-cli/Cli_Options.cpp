#include "Cli_Options.h"

#include <utility>

namespace morvane {

QString Cli_Parse(const QStringList& arguments, CliOptions& options) {
    bool onlyInputs = false; // after "--" every word is a path, even one starting with "-"
    bool queryWord = false;  // the test query came as the word after the option
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments.at(i);
        if (onlyInputs || !word.startsWith(QLatin1Char('-')) || word == QLatin1String("-")) {
            options.inputs << word;
            continue;
        }
        // Options taking a value accept both "--name value" and "--name=value".
        QString name = word;
        QString value;
        bool inlineValue = false;
        const qsizetype equals = word.indexOf(QLatin1Char('='));
        if (word.startsWith(QLatin1String("--")) && equals > 0) {
            name = word.left(equals);
            value = word.mid(equals + 1);
            inlineValue = true;
        }
        const auto takeValue = [&](QString& target) -> bool {
            if (inlineValue) {
                target = value;
                return true;
            }
            if (i + 1 >= arguments.size()) return false;
            target = arguments.at(++i);
            return true;
        };

        if (name == QLatin1String("--")) {
            onlyInputs = true;
        } else if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
            options.help = true;
        } else if (name == QLatin1String("--version")) {
            options.version = true;
        } else if (name == QLatin1String("--preset")) {
            if (!takeValue(options.preset) || options.preset.trimmed().isEmpty())
                return QStringLiteral("--preset needs a name");
        } else if (name == QLatin1String("--set")) {
            QString assignment;
            const qsizetype at = takeValue(assignment) ? assignment.indexOf(QLatin1Char('=')) : -1;
            if (at <= 0) return QStringLiteral("--set needs FIELD=VALUE");
            options.sets.append({assignment.left(at).trimmed(), assignment.mid(at + 1).trimmed()});
        } else if (name == QLatin1String("--output") || name == QLatin1String("-o")) {
            if (!takeValue(options.output) || options.output.isEmpty())
                return QStringLiteral("--output needs a folder");
        } else if (name == QLatin1String("--effects")) {
            if (!takeValue(options.effects))
                return QStringLiteral("--effects needs a list, e.g. \"Gray Scale,Mosaic:5\"");
        } else if (name == QLatin1String("--merge")) {
            options.merge = true;
        } else if (name == QLatin1String("--parallel")) {
            QString count;
            bool ok = false;
            if (takeValue(count)) options.parallel = count.toInt(&ok);
            if (!ok || options.parallel < 1 || options.parallel > 64)
                return QStringLiteral("--parallel needs a number from 1 to 64");
        } else if (name == QLatin1String("--overwrite") || name == QLatin1String("--rename")) {
            const int mode = name == QLatin1String("--overwrite") ? 0 : 1;
            if (options.nameMode != -1 && options.nameMode != mode)
                return QStringLiteral("--overwrite and --rename exclude each other");
            options.nameMode = mode;
        } else if (name == QLatin1String("--list-presets")) {
            options.listPresets = true;
            if (inlineValue)
                options.listQuery = value;
            else if (i + 1 < arguments.size() && !arguments.at(i + 1).startsWith(QLatin1Char('-')))
                options.listQuery = arguments.at(++i); // the query is optional
        } else if (name == QLatin1String("--test-presets")) {
            options.testPresets = true;
            queryWord =
                !inlineValue && i + 1 < arguments.size() && !arguments.at(i + 1).startsWith(QLatin1Char('-'));
            if (inlineValue)
                options.testQuery = value;
            else if (queryWord)
                options.testQuery = arguments.at(++i);
        } else if (name == QLatin1String("--dry-run") || name == QLatin1String("-n")) {
            options.dryRun = true;
        } else if (name == QLatin1String("--verbose") || name == QLatin1String("-v")) {
            options.verbose = true;
        } else {
            return QStringLiteral("unknown option ") + word;
        }
    }
    if (options.help || options.version || options.listPresets) return QString();
    if (options.testPresets) {
        // "--test-presets FILE": with nothing after it, the word was the file, not a query.
        if (options.inputs.isEmpty() && queryWord)
            options.inputs << std::exchange(options.testQuery, QString());
        if (options.inputs.isEmpty()) return QStringLiteral("--test-presets needs a file to convert");
        if (!options.preset.isEmpty() || !options.sets.isEmpty() || !options.output.isEmpty() ||
            options.merge || options.dryRun)
            return QStringLiteral("--test-presets takes no --preset, --set, --output, --merge or --dry-run");
        return QString();
    }
    if (options.inputs.isEmpty()) return QStringLiteral("no files or folders given");
    if (options.preset.isEmpty()) return QStringLiteral("--preset is required");
    return QString();
}

QString Cli_HelpText(const QString& program) {
    return QStringLiteral(
               "Usage: %1 [options] FILE|FOLDER...\n"
               "Converts video and audio files with a catalogue preset.\n"
               "\n"
               "  --preset NAME          the preset, by exact name or by search words\n"
               "  --set FIELD=VALUE      change one value of the preset, e.g. frame-size=\"640 x 360\",\n"
               "                         sample-rate=44100, video-bitrate=1500, quality=High;\n"
               "                         fields: video-codec, frame-size, frame-rate, extension,\n"
               "                         audio-codec, sample-rate, audio-bitrate, channels,\n"
               "                         sample-size, aspect, video-bitrate, width, height, quality;\n"
               "                         a number beyond the preset's limits is clamped, and said so\n"
               "  --output DIR           the output folder (default: the saved one)\n"
               "  --effects LIST         image effects for every file, in order, e.g. "
               "\"Brightness:-40,Mosaic:5,\"\n"
               "                         or \"Gray Scale,FlipH,\" (names as in the edit window)\n"
               "  --merge                join the converted files into one\n"
               "  --parallel N           convert N files at a time\n"
               "  --overwrite, --rename  what to do with an existing output file\n"
               "  --list-presets [QUERY] list presets as \"Name | Maker | Keyword\"; a QUERY that\n"
               "                         finds none is a usage error (status 2)\n"
               "  --test-presets [QUERY] convert the first file with every preset (or those the\n"
               "                         QUERY finds, as --list-presets) into a temporary folder\n"
               "                         and list on standard output the presets that fail\n"
               "  --dry-run              show what would run, convert nothing\n"
               "  --verbose              show the encoders' own log (settings, statistics)\n"
               "  --help                 show this text\n"
               "  --version              show the program version\n"
               "\n"
               "Folders are searched recursively for supported files.\n"
               "INT, TERM, HUP and QUIT stop the run as a press on Stop does: unfinished outputs\n"
               "are deleted.\n"
               "Exit status: 0 all converted (all presets passed), 1 some failed or stopped,\n"
               "2 usage error.\n")
        .arg(program);
}

} // namespace morvane
