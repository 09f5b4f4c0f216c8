// The hand-over over a real socket: a second process, a socket left by a crash, and clients that
// send what they should not.
#include "Instance_Channel.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <functional>

using namespace morvane;

namespace {

bool waitFor(const std::function<bool()>& condition, int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

QByteArray header(quint32 length, const QByteArray& magic = "MRVN") {
    QByteArray bytes = magic + QByteArray(4, '\0');
    qToBigEndian(length, bytes.data() + 4);
    return bytes;
}

QByteArray frame(const QByteArray& payload) {
    return header(static_cast<quint32>(payload.size())) + payload;
}

const QByteArray kAck(1, Instance_Channel::kAck);
const QString kName = QStringLiteral("morvane-test");

// Sends bytes as a sibling would and lets the server run until it hangs up: its answer, or "<open>".
QByteArray exchange(const QString& path, const QByteArray& bytes) {
    QLocalSocket socket;
    socket.connectToServer(path);
    socket.write(bytes);
    QByteArray answer;
    const bool hungUp = waitFor(
        [&] { return answer += socket.readAll(), socket.state() == QLocalSocket::UnconnectedState; }, 3000);
    return hungUp ? answer : QByteArray("<open>");
}

class InstanceChannel : public testing::Test {
protected:
    QStringList received;
    std::function<void()> duringHandler = [] {};
    Instance_Channel channel{[this](const QString& text) { received << text, duringHandler(); }};
};

TEST_F(InstanceChannel, SecondStartHandsOverItsArgumentAndWaitsUntilItIsHandled) {
    ASSERT_FALSE(channel.Find_PrevInstance(kName, QString()));
    for (const QStringList& arguments : {QStringList{"@AddFile:/v/été clip.mp4"}, QStringList{}}) {
        received.clear();
        QProcess second;
        bool secondWaited = false;
        duringHandler = [&] {
            waitFor([] { return false; }, 300); // time enough for a second start that did not wait to end
            secondWaited = second.state() == QProcess::Running;
        };
        second.start(QCoreApplication::applicationFilePath(), QStringList{"--hand-over", kName} + arguments);
        ASSERT_TRUE(waitFor([&] { return second.state() == QProcess::NotRunning; }, 10000));
        EXPECT_EQ(second.exitCode(), 0);
        EXPECT_EQ(received, QStringList{arguments.value(0) + " "});
        EXPECT_TRUE(secondWaited);
    }
}

TEST_F(InstanceChannel, FirstStartListensOwnerOnlyWhateverWasLeftBehind) {
    const QByteArray path = Instance_Channel::Socket_Path(kName).toUtf8();
    const std::function<void()> leftBehind[] = {
        [] {},
        [&] { // a crashed instance's socket: bound, never removed, nobody listening
            const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
            ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
            ::close(fd);
        },
    };
    for (const auto& prepare : leftBehind) {
        prepare();
        received.clear();
        {
            Instance_Channel first([this](const QString& text) { received << text; });
            ASSERT_FALSE(first.Find_PrevInstance(kName, "ignored"));
            struct stat status {};
            ASSERT_EQ(::stat(path.constData(), &status), 0);
            EXPECT_TRUE(S_ISSOCK(status.st_mode));
            EXPECT_EQ(status.st_mode & 077, 0u) << "group or others may reach the socket";
            EXPECT_EQ(exchange(first.socketPath(), frame("hello")), kAck);
            EXPECT_EQ(received, QStringList{"hello"});
        }
        EXPECT_FALSE(QFile::exists(QString::fromUtf8(path)));
    }
}

TEST_F(InstanceChannel, BadMessagesAreRefusedAndTheServerGoesOn) {
    ASSERT_FALSE(channel.Find_PrevInstance(kName, QString()));
    channel.setStallTimeout(300);
    const qint64 limit = Instance_Channel::kMaxMessageBytes;
    struct Case {
        const char* what;
        QByteArray bytes;
        bool accepted;
    };
    const Case cases[] = {
        {"another header", header(2, "MRVX") + "hi", false},
        {"one byte over the limit", frame(QByteArray(limit + 1, 'a')), false},
        {"a length of 4 GiB", header(0xFFFFFFFFu), false},
        {"not UTF-8", frame("ok \xff\xfe"), false},
        {"stalled in the header", "MRV", false},
        {"stalled in the text", header(10) + "abc", false},
        {"at the limit", frame(QByteArray(limit, 'a')), true},
        {"empty", frame(""), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        received.clear();
        EXPECT_EQ(exchange(channel.socketPath(), c.bytes), c.accepted ? kAck : QByteArray());
        EXPECT_EQ(received.size(), c.accepted ? 1 : 0);
        EXPECT_EQ(exchange(channel.socketPath(), frame("still here")), kAck);
        EXPECT_EQ(received.value(received.size() - 1), "still here");
    }
}

TEST_F(InstanceChannel, ATextThatComesWhileTheHandlerYieldsWaitsItsTurn) {
    ASSERT_FALSE(channel.Find_PrevInstance(kName, QString()));
    QLocalSocket later;
    QStringList seenByFirst;
    duringHandler = [&] {
        if (received.size() > 1) return;
        later.connectToServer(channel.socketPath());
        later.write(frame("b"));
        waitFor([] { return false; }, 200); // the real handler lets events through too
        seenByFirst = received;
    };
    EXPECT_EQ(exchange(channel.socketPath(), frame("a")), kAck);
    EXPECT_TRUE(waitFor([&] { return later.state() == QLocalSocket::UnconnectedState; }, 3000));
    EXPECT_EQ(seenByFirst, QStringList{"a"});
    EXPECT_EQ(received, QStringList({"a", "b"}));
    EXPECT_EQ(later.readAll(), kAck);
}

} // namespace
