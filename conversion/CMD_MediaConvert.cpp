#include "CMD_MediaConvert.h"

#include "File_Names.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Output_File.h"
#include "Output_Names.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>

namespace morvane {

namespace {

const QString kPromptLine = QStringLiteral("Press [q] to stop, [?] for help");

QStringList splitOptions(const QString& options) {
    return options.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

QString Merge_ListLine(const QString& path) {
    QString quoted = path;
    quoted.replace(QStringLiteral("'"), QStringLiteral("'\\''"));
    return QStringLiteral("file '") + quoted + QLatin1Char('\'');
}

QString Merge_FreshTarget(const QString& folder, const QString& extension) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        const int n = attempt < 50 ? QRandomGenerator::global()->bounded(1, 1001) : 1000 + attempt;
        QFile target(folder + QStringLiteral("temp") + QString::number(n) + QLatin1Char('.') + extension);
        // NewOnly: a file of the user's under that name is never opened, let alone truncated.
        if (target.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return target.fileName();
        if (target.exists()) continue;
        return QString(); // the folder itself refuses
    }
    return QString();
}

MergePipeline::MergePipeline() {
    waitStep = [](int milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    };
}

MergePipeline::~MergePipeline() {
    Merge_KillChild();
}

void MergePipeline::Merge_SetPaths() {
    Merge_TempFolder = Folder_Temp;
    Merge_FFmpegPath = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    Merge_ListFile = Merge_TempFolder + QStringLiteral("file.txt");
    Merge_ResultFile = Merge_TempFolder + QStringLiteral("result.txt");
}

void MergePipeline::Merge_AddFile(const QString& path) {
    QFile list(Merge_ListFile);
    if (list.open(QIODevice::Append)) list.write((Merge_ListLine(path) + QStringLiteral("\n")).toUtf8());
}

void MergePipeline::Merge_Reset(const QString& keepPath) {
    for (const QString& file : {Merge_ResultFile, Merge_ListFile})
        Delete_File(file);
    if (!keepPath.isEmpty()) Delete_File(keepPath);
}

bool MergePipeline::Merge_Run(const QString& target, const QString& inputOptions,
                              const QString& outputOptions) {
    Merge_ErrorText.clear();
    Merge_Failed = false;
    Merge_Finished = false;
    QFile(Merge_ResultFile).open(QIODevice::WriteOnly | QIODevice::Truncate);
    // The target is ours already (Merge_FreshTarget); a missing one is made, an existing one left.
    QFile(target).open(QIODevice::WriteOnly | QIODevice::NewOnly);
    Merge_OutputPath = target;
    Merge_KillChild();
    // An argument list, never a shell line: paths with blanks or quotes need no short forms.
    QStringList arguments{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner")};
    QStringList input = splitOptions(inputOptions);
    // Our pieces are absolute paths, which the concat demuxer only takes when told they are safe.
    const qsizetype concat = input.indexOf(QStringLiteral("concat"));
    if (concat >= 0)
        input.insert(concat + 1, QStringLiteral("-safe")), input.insert(concat + 2, QStringLiteral("0"));
    arguments << input << Merge_ListFile << splitOptions(outputOptions) << Merge_OutputPath;
    m_child = std::make_unique<QProcess>();
    m_child->setStandardErrorFile(Merge_ResultFile);
    m_child->setStandardOutputFile(QProcess::nullDevice());
    m_child->setStandardInputFile(QProcess::nullDevice());
    m_child->start(Merge_FFmpegPath.isEmpty() ? QStringLiteral("ffmpeg") : Merge_FFmpegPath, arguments);
    Merge_IdleTicks = 0;
    return m_child->waitForStarted(5000);
}

void MergePipeline::Merge_Poll() {
    QFile result(Merge_ResultFile);
    if (!result.open(QIODevice::ReadOnly)) return;
    // Progress lines end in a carriage return only, so the last line is the whole tail.
    QString text = QString::fromUtf8(result.readAll());
    const qsizetype lastBreak =
        text.lastIndexOf(QLatin1Char('\n'), text.endsWith(QLatin1Char('\n')) ? -2 : -1);
    text = text.mid(lastBreak + 1);
    text.remove(QLatin1Char('\t')).remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
    for (int blanks = 7; blanks >= 1; --blanks)
        text.replace(QLatin1Char('=') + QString(blanks, QLatin1Char(' ')), QStringLiteral("="));
    Merge_ResultText = text;

    bool timeFound = false;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString& word : words) {
        if (words.last().endsWith(QLatin1Char('%'))) {
            Merge_Finished = true;
            return;
        }
        Merge_Finished = false;
        if (word.contains(QStringLiteral("time="), Qt::CaseInsensitive)) {
            Merge_Time = Trim_Spaces(QString(word).remove(QStringLiteral("time="), Qt::CaseInsensitive));
            timeFound = true;
        }
    }
    if (timeFound) {
        Merge_IdleTicks = 0;
        return;
    }
    if (Merge_ResultText != kPromptLine && Merge_IdleTicks == 10) {
        Merge_ErrorText = Merge_ResultText;
        Merge_Failed = true;
        return;
    }
    ++Merge_IdleTicks;
    if (Merge_ChildRunning()) {
        Merge_Failed = false;
        Merge_IdleTicks = 0;
    } else {
        ++Merge_IdleTicks;
        if (Merge_IdleTicks == 10) Merge_Failed = true;
    }
}

bool MergePipeline::Merge_ChildRunning() {
    if (m_child && m_child->state() != QProcess::NotRunning) return true;
    return false;
}

void MergePipeline::Merge_KillChild() {
    if (!m_child) return;
    if (m_child->state() != QProcess::NotRunning) {
        m_child->kill();
        m_child->waitForFinished(3000);
    }
    m_child.reset();
}

void MergePipeline::Merge_DeleteParts() {
    QFile list(Merge_ListFile);
    if (list.open(QIODevice::ReadOnly)) {
        static const QRegularExpression line(QStringLiteral("^file '(.*)'$"));
        for (const QString& entry :
             QString::fromUtf8(list.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QRegularExpressionMatch m = line.match(entry);
            if (m.hasMatch())
                Delete_File(QString(m.captured(1)).replace(QStringLiteral("'\\''"), QStringLiteral("'")));
        }
        list.close();
    }
    Delete_File(Merge_ListFile);
}

void MergePipeline::Timer_FFmpeg_Tick() {
    Merge_Poll();
    if (Merge_Finished) {
        Timer_FFmpeg = false;
        Merge_KillChild();
    } else if (Merge_Failed) {
        Timer_FFmpeg = false;
        Merge_ErrorText = QStringLiteral("The operation is canceled! Please try again.");
        Merge_KillChild();
    }
    if (ticked) ticked();
}

void MergePipeline::Cancel() {
    Merge_Failed = true;
    Timer_FFmpeg = false;
    if (Merge_ErrorText.isEmpty()) Merge_ErrorText = QStringLiteral("Operation has been cancelled!");
    Merge_KillChild();
}

bool MergePipeline::Merge_All(FileViewMain& table, const QString& outputFolder, int outputPanel) {
    Merge_SetPaths();
    Merge_Reset(QString());
    if (showWait) showWait(true);
    int pieces = 0;
    for (int row = 0; row < table.rows(); ++row) {
        if (Trim_Spaces(table.text(row, FileCol::Status)) == QLatin1String("Done")) {
            Merge_AddFile(table.text(row, FileCol::ConvertedFileName));
            ++pieces;
        }
    }
    if (pieces < 2) {
        // Nothing to join: the single piece stays as it is.
        Merge_Reset(QString());
        if (showWait) showWait(false);
        Merge_OutputPath.clear();
        return true;
    }
    const QString first = table.text(0, FileCol::ConvertedFileName);
    const QString finalName = Unique_OutputName(first);
    QString extension = File_ExtensionName(first).toUpper();
    if (extension == QLatin1String("M4B") || extension == QLatin1String("M4R"))
        extension = QStringLiteral("M4A");
    // -y below overwrites only this fresh file of our own.
    const QString temporary = Merge_FreshTarget(outputFolder, extension);
    if (temporary.isEmpty()) {
        if (showWait) showWait(false);
        Merge_Reset(QString());
        Show_Message(QStringLiteral("Cannot create a file in \"%1\" to merge into.").arg(outputFolder),
                     MB_OK | MB_ICONCRITICAL, QString());
        return false;
    }
    const QString outputOptions = outputPanel == 2 ? QStringLiteral(" -acodec copy -y")
                                                   : QStringLiteral(" -acodec copy -vcodec copy -y");
    Merge_Run(temporary, QStringLiteral("-f concat -i"), outputOptions);

    Timer_FFmpeg = true;
    while (Timer_FFmpeg) {
        waitStep(500);
        if (Timer_FFmpeg && cancelRequested && cancelRequested()) Cancel();
        if (Timer_FFmpeg) Timer_FFmpeg_Tick();
    }
    if (showWait) showWait(false);

    if (!Merge_Finished) {
        if (Merge_ErrorText.isEmpty() || !Merge_Failed) return true; // passed over
        Show_Message(Merge_ErrorText, MB_OK | MB_ICONCRITICAL, QString());
        Merge_Reset(Merge_OutputPath);
        Merge_Reset(temporary);
        return false;
    }
    Merge_DeleteParts();
    // Never over a file: one that took the name meanwhile sends the merge to the next free name.
    std::string landed, moveError;
    const bool moved =
        Rename_Free(Merge_OutputPath.toStdString(), finalName.toStdString(), landed, moveError);
    Merge_Reset(QString());
    if (!moved) {
        // The pieces are gone by now, so the joined file stays where it is rather than be lost.
        Show_Message(QString::fromStdString(moveError), MB_OK | MB_ICONCRITICAL, QString(),
                     QStringLiteral(" ") + Merge_OutputPath);
        return false;
    }
    Merge_OutputPath = QString::fromStdString(landed);
    return true;
}

} // namespace morvane
