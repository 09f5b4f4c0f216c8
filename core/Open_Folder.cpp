#include "Open_Folder.h"

#include "mMain.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace morvane {

namespace {

FolderLaunchers& launchers() {
    static FolderLaunchers l;
    return l;
}

bool runProgram(const QString& program, const QStringList& arguments) {
    if (launchers().runProgram) return launchers().runProgram(program, arguments);
    // Waits briefly so that a missing service is known and the folder can be opened instead.
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(1000);
        return false;
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool openUrl(const QUrl& url) {
    if (launchers().openUrl) return launchers().openUrl(url);
    return QDesktopServices::openUrl(url);
}

} // namespace

void Set_FolderLaunchers(FolderLaunchers l) {
    launchers() = std::move(l);
}

void Open_Folder(QWidget* window, const QString& path, bool select, bool ask) {
    (void)window;
    const QFileInfo info(path);
    const QString folder = select ? info.absolutePath() : path;
    if (!QFileInfo(folder).isDir() && ask) {
        const QString text = QStringLiteral("Folder  '") + path + QStringLiteral("'  does not exist.\n\n") +
                             QStringLiteral("Do you want to create it?");
        if (Show_Message(text, MB_YESNO | MB_ICONEXCLAMATION, QString()) != ID_YES) return;
        QDir().mkpath(folder);
    }
    if (select) {
        const QString item = QUrl::fromLocalFile(info.absoluteFilePath()).toString();
        if (runProgram(QStringLiteral("dbus-send"),
                       {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                        QStringLiteral("--dest=org.freedesktop.FileManager1"),
                        QStringLiteral("--type=method_call"), QStringLiteral("/org/freedesktop/FileManager1"),
                        QStringLiteral("org.freedesktop.FileManager1.ShowItems"),
                        QStringLiteral("array:string:") + item, QStringLiteral("string:")}))
            return;
        // No file manager service: the folder alone.
        openUrl(QUrl::fromLocalFile(info.absolutePath()));
        return;
    }
    openUrl(QUrl::fromLocalFile(path));
}

} // namespace morvane
