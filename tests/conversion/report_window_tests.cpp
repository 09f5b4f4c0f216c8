#include "Globals.h"
#include "Report_List.h"
#include "frmMsg.h"
#include "frmReportList.h"
#include "mMain.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QNetworkProxy>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTreeWidget>
#include <QUrl>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

void pressEscape(QWidget* widget) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
}

// A report endpoint on the loopback: keeps the request line of each request, and answers 200
// unless it is told to stay silent.
class Endpoint : public QObject {
public:
    explicit Endpoint(bool answer) {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this, answer] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer] {
                    m_buffers[socket] += socket->readAll();
                    const QByteArray& buffer = m_buffers[socket];
                    if (!buffer.contains("\r\n\r\n") || socket->property("seen").toBool()) return;
                    socket->setProperty("seen", true);
                    requestLines.append(QString::fromLatin1(buffer.left(buffer.indexOf("\r\n"))));
                    if (!answer) return;
                    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
                    socket->disconnectFromHost();
                });
            }
        });
    }
    QString link() const {
        return QStringLiteral("http://127.0.0.1:%1/report/?text=").arg(m_server.serverPort());
    }
    // The text after the link's query start, decoded, of the request line "GET <target> HTTP/1.1".
    QString sentText(int index) const {
        const QString line = requestLines.value(index);
        const QString target = line.section(QLatin1Char(' '), 1, 1);
        return QUrl::fromPercentEncoding(target.toLatin1()).section(QStringLiteral("?text="), 1);
    }

    QStringList requestLines;

private:
    QTcpServer m_server;
    QHash<QTcpSocket*, QByteArray> m_buffers;
};

struct Shown {
    QString text;
    int flags;
    QString title;
};

class ReportWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        PRODUCT_VERSION = QStringLiteral("3.4.1");
        Report_Clear();
        Set_ReportSink(window);
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            messages.append({text, flags, title});
            return int(ID_OK);
        });
        mainWindow.show();
    }
    void TearDown() override {
        Set_ReportSink(nullptr);
        Set_MessageHandler(nullptr);
        Report_Clear();
    }
    void expectClosed() {
        EXPECT_FALSE(window->isVisible());
        EXPECT_TRUE(mainWindow.isEnabled());
        EXPECT_TRUE(Report_Entries().isEmpty());
    }
    void expectThanked() {
        ASSERT_EQ(messages.size(), 1);
        EXPECT_EQ(messages[0].text, "Thank you.");
        EXPECT_EQ(messages[0].flags, MB_ICONINFORMATION);
        EXPECT_EQ(messages[0].title, "");
    }

    QWidget mainWindow;
    frmReportList* window = new frmReportList(&mainWindow); // owned by the main window
    QList<Shown> messages;
};

TEST_F(ReportWindowTest, ShowsTheFormOverADisabledMainWindow) {
    for (int i = 0; i < 10; ++i)
        Report_Add(QStringLiteral("file%1.avi").arg(i),
                   i == 6 ? QStringLiteral("  Invalid data found when processing input ")
                          : QStringLiteral("Unknown error"));
    Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));

    ASSERT_TRUE(window->isVisible());
    EXPECT_FALSE(mainWindow.isEnabled());
    EXPECT_TRUE(window->isEnabled());
    EXPECT_TRUE(window->Cmd_Panels(0)->isEnabled());
    EXPECT_EQ(window->windowTitle(), "DRM Protection");
    EXPECT_EQ(window->lbl_Msg()->text(), "These files are copy-protected and can not be converted.");
    EXPECT_EQ(window->lbl_Msg()->font().pointSize(), 10);
    ASSERT_EQ(window->View_ListBox()->topLevelItemCount(), 10);
    EXPECT_EQ(window->View_ListBox()->topLevelItem(0)->text(0), "file0.avi");
    EXPECT_EQ(window->View_ListBox()->topLevelItem(0)->text(1), "Unknown error");
    EXPECT_EQ(window->View_ListBox()->topLevelItem(9)->text(0), "file9.avi");

    // A second report replaces the rows and the form.
    Report_Clear();
    Report_Add(QStringLiteral("only.avi"), QStringLiteral("Unknown error"));
    Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));
    EXPECT_EQ(window->windowTitle(), "Conversion Reports");
    EXPECT_EQ(window->lbl_Msg()->text(), "Can not convert these files!");
    EXPECT_EQ(window->lbl_Msg()->font().pointSize(), 12);
    EXPECT_EQ(window->View_ListBox()->topLevelItemCount(), 1);
    EXPECT_FALSE(mainWindow.isEnabled());
}

TEST_F(ReportWindowTest, CloseButtonCloseBoxAndEscapeClearTheReport) {
    const std::function<void()> closers[] = {
        [this] { window->Cmd_Panels(0)->click(); },
        [this] { window->close(); },
        [this] { pressEscape(window); },
    };
    for (const auto& closeWindow : closers) {
        Report_Add(QStringLiteral("a.avi"), QStringLiteral("Unknown error"));
        Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));
        ASSERT_FALSE(mainWindow.isEnabled());
        closeWindow();
        expectClosed();
        EXPECT_EQ(window->View_ListBox()->topLevelItemCount(), 0);
    }
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(ReportWindowTest, SendPassesTheWholeTextWithoutHashMarks) {
    Endpoint endpoint(true);
    LINK_SEND_REPORT = endpoint.link();
    QString failure;
    while (failure.size() < 2000)
        failure += QStringLiteral("C:/Videos/take #7 (part 2); codec: h264 @ 30fps | ");
    failure.truncate(2000);
    Report_Add(QStringLiteral("my #1 clip.avi"), failure);
    Report_Add(QStringLiteral("second.avi"), QStringLiteral("Unknown error"));
    Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));

    window->Cmd_Panels(1)->click();

    ASSERT_EQ(endpoint.requestLines.size(), 1);
    EXPECT_TRUE(endpoint.requestLines[0].startsWith("GET /report/?text=inputfailed,34"));
    const QString sent = endpoint.sentText(0);
    QString expected = Report_SendText({{QStringLiteral("my #1 clip.avi"), failure}}, 3, 4, 0);
    expected.chop(1); // the random number
    ASSERT_TRUE(sent.startsWith(expected)) << sent.left(120).toStdString();
    bool isNumber = false;
    const int random = sent.mid(expected.size()).toInt(&isNumber);
    EXPECT_TRUE(isNumber);
    EXPECT_GE(random, 1);
    EXPECT_LE(random, 1000);
    EXPECT_TRUE(sent.contains(QString(failure).remove(QLatin1Char('#'))));
    EXPECT_FALSE(sent.contains(QLatin1Char('#')));
    EXPECT_FALSE(sent.contains("second.avi")); // the first entry already passed the limit
    EXPECT_EQ(window->Txt_ToSend(), sent);

    expectThanked();
    expectClosed();
}

TEST_F(ReportWindowTest, FailedSendStillThanksAndCloses) {
    Endpoint silent(false);
    QTcpServer gone;
    gone.listen(QHostAddress::LocalHost);
    const QString refusing = QStringLiteral("http://127.0.0.1:%1/report/?text=").arg(gone.serverPort());
    gone.close();

    window->setSendTimeout(300);
    for (const QString& link : {silent.link(), refusing}) {
        messages.clear();
        LINK_SEND_REPORT = link;
        Report_Add(QStringLiteral("a.avi"), QStringLiteral("Unknown error"));
        Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));
        QElapsedTimer clock;
        clock.start();
        window->Cmd_Panels(1)->click();
        EXPECT_LT(clock.elapsed(), 5000) << link.toStdString();
        expectThanked();
        expectClosed();
        EXPECT_TRUE(window->Cmd_Panels(1)->isEnabled());
    }
    // The silent server had the request and held it until the time-out.
    EXPECT_EQ(silent.requestLines.size(), 1);
}

TEST(CompletionWindow, OnlyOpenOutputFolderAsksForTheOutput) {
    frmMsg window;
    int asked = 0;
    QObject::connect(&window, &frmMsg::openOutputRequested, [&asked] { ++asked; });

    window.show();
    window.Cmd_Msg(1)->click();
    EXPECT_FALSE(window.isVisible());
    window.show();
    pressEscape(&window);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(asked, 0);

    window.show();
    window.Cmd_Msg(0)->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(asked, 1);
}

} // namespace
