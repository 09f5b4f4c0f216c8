// The hand-over between instances: a second start gives its first argument to the running instance
// and ends, and sibling programs send their orders the same way. A local socket in the user's
// runtime folder, reachable by its owner only, stands where a window property and a mailbox would.
//
// Wire format, one message per connection: "MRVN", the payload's length as a 32-bit big-endian
// number, the text in UTF-8. After the running instance's handler has returned, it writes one byte
// (kAck) back and closes. A bad header, a length over kMaxMessageBytes, text that isn't UTF-8, or a
// client that doesn't finish its message in time is dropped without an answer.
//
// Main thread only. The server side never blocks; Find_PrevInstance and Send_Text block their caller
// until the running instance has handled the text, as a second start needs.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <deque>
#include <functional>
#include <map>

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace morvane {

class Instance_Channel : public QObject {
    Q_OBJECT
public:
    // Runs a received text; the mailbox's change event.
    using Handler = std::function<void(const QString& text)>;

    static constexpr qint64 kMaxMessageBytes = 64 * 1024;
    static constexpr char kAck = '\x06';
    static constexpr int kConnectTimeoutMs = 3000;
    static constexpr int kStallTimeoutMs = 5000; // a client's whole message must arrive within this
    static constexpr int kLockTimeoutMs = 5000;  // two starts at once: the second waits this long

    explicit Instance_Channel(Handler handler, QObject* parent = nullptr);
    ~Instance_Channel() override;

    // $XDG_RUNTIME_DIR, or Qt's runtime folder when that is not set.
    static QString Runtime_Folder();
    static QString Socket_Path(const QString& name);
    // A name that differs per user, for systems where the runtime folder is shared.
    static QString Instance_Name(const QString& key);
    // The name this program listens under.
    static QString Program_Name();

    // True when another instance answered: it has got firstArgument + " " and handled it, and the
    // caller should end. False when none answers (no socket, or one left by a crashed instance):
    // this object then listens under the name as the first instance.
    bool Find_PrevInstance(const QString& name, const QString& firstArgument);

    enum class SendResult { NoServer, Handled, NotAcknowledged };
    // The client side alone, for sibling programs. ackTimeoutMs < 0 waits as long as the running
    // instance keeps the connection open.
    static SendResult Send_Text(const QString& socketPath, const QString& text, int ackTimeoutMs = -1);

    // Texts are delivered from the event loop only, so a handler set before it runs misses none.
    void setHandler(Handler handler) { m_handler = std::move(handler); }

    bool isListening() const;
    QString socketPath() const;
    void setStallTimeout(int milliseconds) { m_stallTimeoutMs = milliseconds; }

private:
    struct Incoming {
        QByteArray buffer;
        QTimer* stallTimer = nullptr;
    };
    struct Received {
        QPointer<QLocalSocket> socket;
        QString text;
    };

    static SendResult sendOn(QLocalSocket& socket, const QString& text, int ackTimeoutMs);
    void onNewConnection();
    void onReadyRead(QLocalSocket* socket);
    void refuse(QLocalSocket* socket, const char* why);
    void forget(QLocalSocket* socket);
    void dispatch();

    Handler m_handler;
    QLocalServer* m_server = nullptr;
    std::map<QLocalSocket*, Incoming> m_incoming;
    std::deque<Received> m_received;
    bool m_dispatching = false;
    int m_stallTimeoutMs = kStallTimeoutMs;
};

} // namespace morvane
