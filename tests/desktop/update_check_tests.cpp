#include "../core/WaitFor.h"

#include "Globals.h"
#include "Registry_Mod.h"
#include "Update_Check.h"
#include "frmNoUpdates.h"
#include "frmUpdates.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <optional>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

// An HTTP endpoint on 127.0.0.1 that answers every request with one canned reply, or never answers
// (status ""), or is gone before the request (status "refused"). It closes itself after 5 s.
class Endpoint : public QObject {
public:
    Endpoint(const QByteArray& status, const QByteArray& body) {
        m_server.listen(QHostAddress::LocalHost, 0);
        m_port = m_server.serverPort();
        if (status == "refused") m_server.close();
        QObject::connect(&m_server, &QTcpServer::newConnection, this, [this, status, body] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                socket->setParent(this);
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, status, body] {
                    m_request += socket->readAll();
                    if (!m_request.contains("\r\n\r\n") || status.isEmpty()) return;
                    ++requests;
                    target = m_request.split(' ').value(1);
                    socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                                  QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                    socket->disconnectFromHost();
                });
            }
        });
        QTimer::singleShot(5000, this, [this] { m_server.close(); });
    }
    QString url() const {
        return QStringLiteral("http://127.0.0.1:%1/update?p=PRODUCTNAME&v=VERSION").arg(m_port);
    }
    int requests = 0;
    QByteArray target;

private:
    QTcpServer m_server;
    QByteArray m_request;
    quint16 m_port = 0;
};

const QString S17(17, QLatin1Char(' '));

// Every test talks to its own endpoint only; the stored endpoint points at loopback as well.
class UpdateCheckTest : public testing::Test {
protected:
    void SetUp() override {
        PRODUCT_NAME = QStringLiteral("Morvane Video");
        PRODUCT_VERSION = QStringLiteral("2.9.0");
        LINK_CHECKUPDATE = QStringLiteral("http://127.0.0.1:9/none");
        LINK_HOMEPAGE1 = QStringLiteral("https://morvane.org/");
    }
    void TearDown() override { qunsetenv("MORVANE_UPDATE_URL"); }
    void use(const Endpoint& endpoint) { qputenv("MORVANE_UPDATE_URL", endpoint.url().toUtf8()); }
};

TEST_F(UpdateCheckTest, RepliesOfTheEndpoint) {
    struct Case {
        const char* running;
        QByteArray status, body; // status: "refused" or "" as Endpoint takes them
        bool found;
        QString message;
    };
    const QString twoNewer = " Version 3.0\r\n" + S17 + "- Faster start\r\n" + S17 + "- New presets\r\n\r\n" +
                             " Version 3.1\r\n" + S17 + "- Fixed crash\r\n\r\n";
    const Case cases[] = {
        {"2.9.0", "200 OK", "3.0/Faster start/New presets/\r\n3.1/Fixed crash/\r\n", true, twoNewer},
        {"2.9.0", "200 OK", "0\r\n", false, ""},
        {"2.9.0", "200 OK", "2.9/Faster start/", false, ""},
        {"2.10.4", "200 OK", "2.9/Smaller files/", true,
         " Version 2.9\r\n" + S17 + "- Smaller files\r\n\r\n"},
        {"2.9.0", "200 OK", "2.10/Smaller files/", false, ""}, // 2.10 reads as 2.1
        // Older lines give nothing; what follows the last "/" is no change; bare LF splits lines.
        {"1.0", "200 OK", "0.9/old/\n1.5/a/b", true, " Version 1.5\r\n" + S17 + "- a\r\n\r\n"},
        {"2.9.0", "200 OK", "<html><body>Moved</body></html>", false, ""},
        {"2.9.0", "404 Not Found", "3.0/from an error page/", false, ""},
        {"2.9.0", "refused", "", false, ""},
        {"2.9.0", "", "", false, ""}, // accepts and never answers: the time limit ends it
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body.isEmpty() ? c.status.constData() : c.body.constData());
        PRODUCT_VERSION = QLatin1String(c.running);
        UpdateMessage = QStringLiteral("stale");
        Endpoint endpoint(c.status, c.body);
        use(endpoint);
        QObject owner;
        std::optional<bool> found;
        QElapsedTimer clock;
        clock.start();
        Update_Check(500, &owner, [&](bool f) { found = f; });
        ASSERT_TRUE(waitFor([&] { return found.has_value(); }, 3000));
        EXPECT_LT(clock.elapsed(), 1500);
        EXPECT_EQ(*found, c.found);
        EXPECT_EQ(UpdateFound, c.found);
        EXPECT_EQ(UpdateMessage, c.message);
        if (c.status == "200 OK") {
            EXPECT_EQ(endpoint.target,
                      "/update?p=Morvane%20Video&v=" + Update_RunningVersion(c.running).toUtf8());
        }
    }
}

TEST_F(UpdateCheckTest, UrlFromTemplate) {
    const struct {
        const char *linkTemplate, *name, *version, *url;
    } cases[] = {
        {"http://h/u?p=PRODUCTNAME&v=VERSION", "Morvane Video", "2.10",
         "http://h/u?p=Morvane%20Video&v=2.10"},
        {"http://h/productname/Version/x y", "M", "1.0", "http://h/M/1.0/x%20y"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Update_Url(c.linkTemplate, c.name, c.version), c.url) << c.linkTemplate;
    for (const auto& [product, running] : {std::pair{"2.10.3", "2.10"}, {"3", "3.0"}, {"0.1.0", "0.1"}})
        EXPECT_EQ(Update_RunningVersion(product), running) << product;
}

TEST_F(UpdateCheckTest, WindowTexts) {
    QList<QUrl> opened;
    for (int button : {0, 1}) {
        Update_Leaving = false;
        frmUpdates offer(nullptr, " Version 3.0\r\n" + S17 + "- a\r\n\r\n",
                         [&](const QUrl& u) { opened << u; });
        EXPECT_EQ(offer.windowTitle(), "Morvane Video Update");
        EXPECT_EQ(offer.lbl_UpdateMsg()->text(), "There is a new version of Morvane Video available !");
        EXPECT_EQ(offer.Txt_UpdateMsg()->toPlainText(), " Version 3.0\n" + S17 + "- a\n\n");
        offer.show();
        offer.Cmd_Msg(button)->click();
        EXPECT_FALSE(offer.isVisible());
        EXPECT_EQ(Update_Leaving, button == 1);
        EXPECT_EQ(opened.size(), button);
    }
    EXPECT_EQ(opened.value(0), QUrl(LINK_HOMEPAGE1));
    frmNoUpdates none;
    EXPECT_EQ(none.lbl_Msg()->text(), "You have the latest version of Morvane Video.");
    none.show();
    none.Cmd_OK()->click();
    EXPECT_EQ(none.result(), QDialog::Accepted);
}

// The main window's entry: the stored switch decides the start check, the menu always asks.
TEST_F(UpdateCheckTest, EntryShowsTheAnswerWindow) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    REGISTRY_PRODUCT = QStringLiteral("morvane-test/update");
    struct Case {
        UpdateTrigger trigger;
        const char* active; // nullptr: absent from the settings
        QByteArray body;
        int requests;
        const char* window; // "" for none
    };
    const Case cases[] = {
        {UpdateTrigger::Start, nullptr, "3.0/x/", 1, "frmUpdates"},
        {UpdateTrigger::Start, "", "3.0/x/", 1, "frmUpdates"},
        {UpdateTrigger::Start, "0", "3.0/x/", 0, ""},
        {UpdateTrigger::Start, "-1", "0", 1, ""},
        {UpdateTrigger::Menu, "0", "0", 1, "frmNoUpdates"},
        {UpdateTrigger::Menu, "0", "3.0/x/", 1, "frmUpdates"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.trigger) << " " << (c.active ? c.active : "absent") << " "
                                        << c.body.constData());
        QFile::remove(Settings_FilePath(REGISTRY_PRODUCT));
        if (c.active) Write_Setting(REGISTRY_PRODUCT, QStringLiteral("UpdateActive"), c.active);
        Load_Settings();
        Endpoint endpoint("200 OK", c.body);
        use(endpoint);
        QWidget window;
        window.show();
        QStringList shown;
        Update_Run(&window, c.trigger, {3000, [&](QDialog& d) { shown << d.objectName(); }, {}});
        ASSERT_TRUE(waitFor([] { return !Update_Running(); }, 3000));
        EXPECT_EQ(endpoint.requests, c.requests);
        EXPECT_EQ(shown, *c.window ? QStringList{c.window} : QStringList{});
    }
    qunsetenv("XDG_CONFIG_HOME");
}

// A menu check while the start check waits joins it; a window that closes takes its check along.
TEST_F(UpdateCheckTest, OneCheckAtATime) {
    Endpoint endpoint("", "");
    use(endpoint);
    Update_Active = true;
    QStringList shown;
    const UpdateHooks hooks{300, [&](QDialog& d) { shown << d.objectName(); }, {}};
    QWidget window;
    window.show();
    Update_Run(&window, UpdateTrigger::Start, hooks);
    Update_Run(&window, UpdateTrigger::Menu, hooks);
    ASSERT_TRUE(waitFor([] { return !Update_Running(); }, 3000));
    EXPECT_EQ(shown, QStringList{"frmNoUpdates"});

    auto* closing = new QWidget;
    closing->show();
    Update_Run(closing, UpdateTrigger::Menu, hooks);
    delete closing;
    EXPECT_FALSE(Update_Running());
    waitFor([] { return false; }, 400); // past the time limit: nothing may answer now
    EXPECT_EQ(shown.size(), 1);
}

} // namespace
