// A throw-away home for one test: HOME and the XDG configuration and data folders point into a
// temporary folder, so that settings and user folders never touch the real ones.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QTemporaryDir>

class TempHome {
public:
    TempHome()
        : m_oldHome(qgetenv("HOME")), m_oldConfig(qgetenv("XDG_CONFIG_HOME")),
          m_oldData(qgetenv("XDG_DATA_HOME")) {
        qputenv("HOME", m_dir.path().toUtf8());
        qputenv("XDG_CONFIG_HOME", (m_dir.path() + "/.config").toUtf8());
        qputenv("XDG_DATA_HOME", (m_dir.path() + "/.local/share").toUtf8());
    }
    ~TempHome() {
        qputenv("HOME", m_oldHome);
        restore("XDG_CONFIG_HOME", m_oldConfig);
        restore("XDG_DATA_HOME", m_oldData);
    }
    TempHome(const TempHome&) = delete;
    TempHome& operator=(const TempHome&) = delete;

    QString path() const { return m_dir.path(); }
    // Creates a folder below the home and returns it with a trailing separator.
    QString make(const QString& relative) const {
        QDir().mkpath(m_dir.filePath(relative));
        return m_dir.filePath(relative) + '/';
    }

private:
    static void restore(const char* name, const QByteArray& value) {
        if (value.isEmpty())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    QTemporaryDir m_dir;
    QByteArray m_oldHome;
    QByteArray m_oldConfig;
    QByteArray m_oldData;
};
