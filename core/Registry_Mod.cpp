#include "Registry_Mod.h"

#include "Globals.h"
#include "mMain.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace morvane {

namespace {
QString boolText(bool value) {
    return value ? QStringLiteral("-1") : QStringLiteral("0");
}

QString readGeneral(const char* name) {
    return Trim_Spaces(Read_Setting(REGISTRY_PRODUCT, QLatin1String(name)));
}

void writeGeneral(const char* name, const QString& text) {
    Write_Setting(REGISTRY_PRODUCT, QLatin1String(name), text);
}
} // namespace

QString Settings_FilePath(const QString& keyPath) {
    QString relative = keyPath;
    relative.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (relative.isEmpty()) relative = QStringLiteral("morvane");
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1Char('/') +
           relative + QStringLiteral(".ini");
}

QString Read_Setting(const QString& keyPath, const QString& valueName) {
    const QSettings store(Settings_FilePath(keyPath), QSettings::IniFormat);
    const QVariant value = store.value(valueName);
    // A value that is no text (a list from a hand-edited file) counts as absent.
    if (!value.isValid() || value.typeId() != QMetaType::QString) return QString();
    return value.toString();
}

bool Write_Setting(const QString& keyPath, const QString& valueName, const QString& text) {
    QSettings store(Settings_FilePath(keyPath), QSettings::IniFormat);
    if (!store.isWritable()) return false;
    store.setValue(valueName, text);
    store.sync();
    return store.status() == QSettings::NoError;
}

void Load_Settings() {
    const QString closeEvent = readGeneral("CloseEvent");
    if (closeEvent == QLatin1String("1") || closeEvent == QLatin1String("2")) {
        Close_Event = closeEvent.toInt();
        Close_DontAsk = readGeneral("CloseDontAskMe") != QLatin1String("0");
    } else {
        // Absent, "0" or anything unknown: ask on close.
        Close_Event = 0;
        Close_DontAsk = false;
    }
    Update_Active = readGeneral("UpdateActive") != QLatin1String("0");
    const QDate stored = QDate::fromString(readGeneral("UpdateLastTime"), Qt::ISODate);
    Update_LastTime = stored.isValid() ? stored : QDate::currentDate();
    Output_NameMode = readGeneral("OutputFileName") == QLatin1String("0") ? 0 : 1;
    Theme_No = readGeneral("ThemeNo") == QLatin1String("1") ? 1 : 2;
}

void Save_Settings() {
    writeGeneral("CloseEvent", QString::number(Close_Event));
    writeGeneral("CloseDontAskMe", boolText(Close_DontAsk));
    writeGeneral("UpdateActive", boolText(Update_Active));
    const QDate when = Update_LastTime.isValid() ? Update_LastTime : QDate::currentDate();
    writeGeneral("UpdateLastTime", when.toString(Qt::ISODate));
    writeGeneral("OutputFileName", QString::number(Output_NameMode));
    writeGeneral("ThemeNo", QString::number(Theme_No));
}

} // namespace morvane
