// morvane-encode: runs conversion tasks through the encoder engine, for checks and benchmarks.
//
//   morvane-encode [--parallel N] [--seek "TEXT"] INPUT OUTPUT "ARGUMENT TEXT" [INPUT OUTPUT "ARGUMENT TEXT"
//   ...]
//
// --empty-hook sets a hook that does nothing, so that "-VideoOutputHook" costs its conversions;
// --idle-hook one that says it has no work, as the program's does without effects; --effects LIST one
// that runs the effect list over every frame, as the program's does for a file with effects.
// --threads N gives each decoder and encoder N threads, for measuring (default: the cores shared out
// among the tasks that run at once).
// --seek gives the input options of the tasks that follow it (" -ss 12.5"; "" for none). Progress and
// each task's end go to standard error; the exit status is 0 only if every task finished.
#include "Effect_Chain.h"
#include "FFEncoder.h"
#include "FFLogger.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

using morvane::FFEncoder;
using morvane::FFLogger;

namespace {

int usage() {
    std::fprintf(stderr, "usage: morvane-encode [--parallel N] [--seek \"TEXT\"] [--empty-hook] "
                         "[--idle-hook] [--effects LIST] [--threads N] [--verbose] "
                         "INPUT OUTPUT "
                         "\"ARGUMENT TEXT\" [INPUT OUTPUT \"ARGUMENT TEXT\" ...]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);

    FFLogger logger;
    logger.SetLogLevel(3); // errors only, unless --verbose
    QObject::connect(&logger, &FFLogger::OnLog, [](int task, int level, const QString& line) {
        std::fprintf(stderr, "#%d.%d %s\n", task, level, line.toLocal8Bit().constData());
    });

    FFEncoder encoder;
    int parallel = 1;
    QString seek;
    int tasks = 0;
    for (int i = 0; i < args.size();) {
        const QString& a = args[i];
        if (a == QLatin1String("--parallel") && i + 1 < args.size()) {
            bool ok = false;
            parallel = args[i + 1].toInt(&ok);
            if (!ok || parallel < 0) return usage();
            i += 2;
        } else if (a == QLatin1String("--threads") && i + 1 < args.size()) {
            bool ok = false;
            const int threads = args[i + 1].toInt(&ok);
            if (!ok || threads < 0) return usage();
            encoder.SetCodecThreads(threads);
            i += 2;
        } else if (a == QLatin1String("--seek") && i + 1 < args.size()) {
            seek = args[i + 1];
            i += 2;
        } else if (a == QLatin1String("--idle-hook")) {
            // A hook with nothing to do, as the program's with an empty effect list: frames skip it.
            encoder.SetVideoHook([](const morvane::HookFrame&) {});
            encoder.SetVideoHookActive([](int) { return false; });
            ++i;
        } else if (a == QLatin1String("--effects") && i + 1 < args.size()) {
            const std::string list = args[i + 1].toStdString();
            encoder.SetVideoHook([list](const morvane::HookFrame& f) {
                morvane::imaging::Run_EffectChain({f.bits, f.width, f.height, f.bytesPerLine}, list,
                                                  static_cast<std::uint32_t>(f.index));
            });
            encoder.SetVideoHookActive([empty = args[i + 1].trimmed().isEmpty()](int) { return !empty; });
            i += 2;
        } else if (a == QLatin1String("--empty-hook")) {
            // For measuring the BGRA round trip of the hook on its own.
            encoder.SetVideoHook([](const morvane::HookFrame&) {});
            ++i;
        } else if (a == QLatin1String("--verbose")) {
            logger.SetLogLevel(5);
            ++i;
        } else if (a.startsWith(QLatin1String("--")) || i + 2 >= args.size()) {
            return usage();
        } else {
            const int task = encoder.AddInput(args[i], seek);
            if (task < 0 || encoder.AddOutput(task, args[i + 1], args[i + 2]) < 0) {
                std::fprintf(stderr, "task %d (%s): %s\n", tasks, args[i + 1].toLocal8Bit().constData(),
                             encoder.LastErrorMessage().toLocal8Bit().constData());
                return 1;
            }
            ++tasks;
            i += 3;
        }
    }
    if (tasks == 0) return usage();

    int unfinished = 0;
    QObject::connect(&encoder, &FFEncoder::OnProgress, [](int task, qint64 position, qint64 duration) {
        const double percent =
            duration > 0 ? 100.0 * static_cast<double>(position) / static_cast<double>(duration) : 0;
        std::fprintf(stderr, "task %d: %.2f s of %.2f s (%.0f%%)\n", task,
                     static_cast<double>(position) / 1e6, static_cast<double>(duration) / 1e6, percent);
    });
    QObject::connect(&encoder, &FFEncoder::OnTerminate,
                     [&](int task, bool finished, bool failed, const QString& message) {
                         if (task == -1) {
                             app.exit(unfinished == 0 ? 0 : 1);
                             return;
                         }
                         if (!finished) ++unfinished;
                         std::fprintf(stderr, "task %d: %s%s%s\n", task,
                                      finished ? "finished"
                                      : failed ? "failed"
                                               : "stopped",
                                      message.isEmpty() ? "" : ": ", message.toLocal8Bit().constData());
                     });
    encoder.Start(parallel);
    return app.exec();
}
