#include "Instance_Channel.h"

#include "Globals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QTimer>
#include <QtEndian>

#include <sys/socket.h>
#include <unistd.h>

namespace morvane {

namespace {

Q_LOGGING_CATEGORY(lcChannel, "morvane.automation")

constexpr qsizetype kHeaderBytes = 8;
constexpr char kMagic[] = "MRVN";

quint32 payloadLength(const QByteArray& header) {
    return qFromBigEndian<quint32>(header.constData() + 4);
}

// The socket file is owner-only already; this also turns away anything that reached it otherwise.
bool peerIsOwner(const QLocalSocket* socket) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const int fd = static_cast<int>(socket->socketDescriptor());
    if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) return false;
    return credentials.uid == ::getuid();
}

} // namespace

Instance_Channel::Instance_Channel(Handler handler, QObject* parent)
    : QObject(parent), m_handler(std::move(handler)), m_server(new QLocalServer(this)) {
    connect(m_server, &QLocalServer::newConnection, this, &Instance_Channel::onNewConnection);
}

Instance_Channel::~Instance_Channel() {
    // The sockets die with the server; their signals must not reach members that are gone by then.
    const QList<QLocalSocket*> sockets = m_server->findChildren<QLocalSocket*>();
    for (QLocalSocket* socket : sockets)
        socket->disconnect(this);
    delete m_server; // closing removes the socket file
}

QString Instance_Channel::Runtime_Folder() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!folder.isEmpty()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

QString Instance_Channel::Socket_Path(const QString& name) {
    return Runtime_Folder() + QLatin1Char('/') + name;
}

QString Instance_Channel::Program_Name() {
    return Instance_Name(PRODUCT_ID + QStringLiteral(".instance"));
}

QString Instance_Channel::Instance_Name(const QString& key) {
    return key + QLatin1Char('-') + QString::number(::getuid());
}

bool Instance_Channel::isListening() const {
    return m_server->isListening();
}

QString Instance_Channel::socketPath() const {
    return m_server->fullServerName();
}

bool Instance_Channel::Find_PrevInstance(const QString& name, const QString& firstArgument) {
    if (isListening()) return false;
    const QString path = Socket_Path(name);
    QDir().mkpath(Runtime_Folder());

    // Two starts at once: the lock lets the second see the first's server rather than remove it.
    // Without the lock we go on; losing that race costs a second window, never a hang.
    QLockFile lock(path + QStringLiteral(".lock"));
    if (!lock.tryLock(kLockTimeoutMs)) qCWarning(lcChannel) << "cannot lock" << path << lock.error();

    QLocalSocket socket;
    socket.connectToServer(path);
    if (socket.waitForConnected(kConnectTimeoutMs)) {
        lock.unlock();
        // The blank makes a repeat of the same text a new order, and a bare start a wake-up call.
        if (sendOn(socket, firstArgument + QLatin1Char(' '), -1) != SendResult::Handled)
            qCWarning(lcChannel) << "the running instance did not acknowledge the hand-over";
        return true;
    }

    // Nothing answers: a socket file left here belongs to an instance that has crashed.
    QLocalServer::removeServer(path);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(path))
        qCWarning(lcChannel) << "cannot listen on" << path << m_server->errorString();
    return false;
}

Instance_Channel::SendResult Instance_Channel::Send_Text(const QString& socketPath, const QString& text,
                                                         int ackTimeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(kConnectTimeoutMs)) return SendResult::NoServer;
    return sendOn(socket, text, ackTimeoutMs);
}

Instance_Channel::SendResult Instance_Channel::sendOn(QLocalSocket& socket, const QString& text,
                                                      int ackTimeoutMs) {
    const QByteArray payload = text.toUtf8();
    QByteArray frame(kMagic, 4);
    frame.resize(kHeaderBytes);
    qToBigEndian<quint32>(static_cast<quint32>(payload.size()), frame.data() + 4);
    frame += payload;
    socket.write(frame);
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(kConnectTimeoutMs)) return SendResult::NotAcknowledged;

    // The running instance answers once its handler has returned, however long that takes.
    QElapsedTimer clock;
    clock.start();
    while (socket.bytesAvailable() < 1) {
        int wait = -1;
        if (ackTimeoutMs >= 0) {
            wait = ackTimeoutMs - static_cast<int>(clock.elapsed());
            if (wait <= 0) return SendResult::NotAcknowledged;
        }
        if (!socket.waitForReadyRead(wait)) break;
    }
    char answer = 0;
    return socket.getChar(&answer) && answer == kAck ? SendResult::Handled : SendResult::NotAcknowledged;
}

void Instance_Channel::onNewConnection() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            forget(socket);
            socket->deleteLater();
        });
        if (!peerIsOwner(socket)) {
            refuse(socket, "a client of another user");
            continue;
        }
        auto* stallTimer = new QTimer(socket);
        stallTimer->setSingleShot(true);
        connect(stallTimer, &QTimer::timeout, this,
                [this, socket] { refuse(socket, "a client that stalled"); });
        m_incoming[socket] = Incoming{QByteArray(), stallTimer};
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        stallTimer->start(m_stallTimeoutMs);
        onReadyRead(socket);
    }
}

void Instance_Channel::onReadyRead(QLocalSocket* socket) {
    const auto it = m_incoming.find(socket);
    if (it == m_incoming.end()) return; // its message is in already; anything more is ignored
    QByteArray& buffer = it->second.buffer;

    // Reads no further than the message, so a length is checked before its payload is taken in.
    for (;;) {
        const qsizetype end =
            buffer.size() < kHeaderBytes ? kHeaderBytes : kHeaderBytes + payloadLength(buffer);
        if (buffer.size() == end) break;
        const QByteArray chunk = socket->read(end - buffer.size());
        if (chunk.isEmpty()) return;
        buffer += chunk;
        if (buffer.size() != kHeaderBytes) continue;
        if (!buffer.startsWith(kMagic)) return refuse(socket, "a message without its header");
        if (payloadLength(buffer) > kMaxMessageBytes) return refuse(socket, "a message over the size limit");
    }

    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(QByteArrayView(buffer).sliced(kHeaderBytes));
    if (decoder.hasError()) return refuse(socket, "a message that is not UTF-8");
    forget(socket);
    m_received.push_back(Received{socket, text});
    QMetaObject::invokeMethod(this, &Instance_Channel::dispatch, Qt::QueuedConnection);
}

void Instance_Channel::refuse(QLocalSocket* socket, const char* why) {
    qCWarning(lcChannel) << "refused" << why;
    forget(socket);
    socket->abort();
    socket->deleteLater();
}

void Instance_Channel::forget(QLocalSocket* socket) {
    const auto it = m_incoming.find(socket);
    if (it == m_incoming.end()) return;
    it->second.stallTimer->stop();
    m_incoming.erase(it);
}

// One text at a time, in the order they came: a handler that lets events through finds the next
// one queued here instead of running inside it.
void Instance_Channel::dispatch() {
    if (m_dispatching) return;
    m_dispatching = true;
    const QPointer<Instance_Channel> self(this);
    while (!m_received.empty()) {
        const Received item = m_received.front();
        m_received.pop_front();
        if (m_handler) m_handler(item.text);
        if (!self) return;
        // A sender that has gone still had its order run, as a sent message would be.
        if (item.socket && item.socket->state() == QLocalSocket::ConnectedState) {
            item.socket->putChar(kAck);
            item.socket->disconnectFromServer(); // flushes the answer first
        }
    }
    m_dispatching = false;
}

} // namespace morvane
