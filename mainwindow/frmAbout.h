// The About window: program, version, maker, the Qt and FFmpeg libraries in use, the home page.
// Modal; Escape or Close ends it.
#pragma once

#include <QDialog>
#include <QString>

class QLabel;

namespace morvane {

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);

    // "Qt 6.4.2, FFmpeg 5.1.4 (libavformat 59.27.100, libavcodec 59.37.100)": the libraries
    // this process runs with, not the ones it was built against.
    static QString Library_Versions();

    QLabel* lbl_Versions() const { return m_versions; }

private:
    QLabel* m_versions = nullptr;
};

} // namespace morvane
