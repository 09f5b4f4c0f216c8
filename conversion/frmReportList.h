// The failure report window: the files that failed with their failure texts, a message above
// them, Close, and Send, which passes the list to the report endpoint. It is the ReportSink of the
// desktop program; a top-level window owned by the main window, shown without blocking while the
// main window is disabled. Main thread only.
#pragma once

#include "Report_List.h"

#include <QDialog>
#include <QList>
#include <QString>

class QLabel;
class QNetworkAccessManager;
class QPushButton;
class QToolButton;
class QTreeWidget;
class QUrl;

namespace morvane {

class frmReportList : public QDialog, public ReportSink {
    Q_OBJECT
public:
    explicit frmReportList(QWidget* mainWindow);
    ~frmReportList() override;

    void Show_Report(const ReportForm& form) override;

    // Longest wait for the endpoint's answer, in milliseconds.
    void setSendTimeout(int milliseconds) { m_sendTimeout = milliseconds; }
    int sendTimeout() const { return m_sendTimeout; }
    // The manager the send goes through (owned by the window), for its proxy and the like.
    QNetworkAccessManager* networkManager() const { return m_network; }
    // The text of the last send, as appended to LINK_SEND_REPORT.
    const QString& Txt_ToSend() const { return m_toSend; }

    QTreeWidget* View_ListBox() const { return m_list; }
    QLabel* lbl_Msg() const { return m_msg; }
    QToolButton* Cmd_Icon() const { return m_icon; }
    QPushButton* Cmd_Panels(int index) const { return m_panels[index == 1 ? 1 : 0]; }

    // Escape and the close box close the report as the Close button does.
    void reject() override;

private:
    void setupConnections();
    void setMainEnabled(bool enabled);
    void closeReport();
    void sendReport();
    // One GET of the link; false on a network failure or when the time-out came first.
    bool sendRequest(const QUrl& url);

    QWidget* m_main = nullptr; // cleared when the main window goes first
    bool m_mainDisabled = false;
    bool m_sending = false;
    int m_sendTimeout = 15000;
    QList<ReportEntry> m_entries;
    QString m_toSend;
    QNetworkAccessManager* m_network = nullptr;
    QToolButton* m_icon = nullptr;
    QLabel* m_msg = nullptr;
    QTreeWidget* m_list = nullptr;
    QPushButton* m_panels[2] = {nullptr, nullptr};
};

} // namespace morvane
