#include "Update_Check.h"

#include "Globals.h"
#include "Registry_Mod.h"
#include "frmNoUpdates.h"
#include "frmUpdates.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QRegularExpression>
#include <QStringList>
#include <QTimer>
#include <QWidget>

namespace morvane {

Q_LOGGING_CATEGORY(lcUpdate, "morvane.desktop.update")

namespace {

// A reply is a few lines; anything far larger is no reply of the endpoint.
constexpr qint64 MaxReplyBytes = 1 << 20;
// How often an answer that is ready looks again for a free screen.
constexpr int PresentRetryMs = 200;

// The leading decimal number of a text, 0 when it does not begin with one ("3.1 beta" gives 3.1,
// "<html>" gives 0), so that an error page's lines count as old versions.
double leadingNumber(const QString& text) {
    static const QRegularExpression number(QStringLiteral("^\\s*([+-]?(?:\\d+\\.?\\d*|\\.\\d+))"));
    const QRegularExpressionMatch match = number.match(text);
    return match.hasMatch() ? match.captured(1).toDouble() : 0.0;
}

} // namespace

QString Update_RunningVersion(const QString& productVersion) {
    const QStringList fields = productVersion.trimmed().split(QLatin1Char('.'));
    const int major = fields.value(0).toInt();
    const int minor = fields.value(1).toInt();
    return QStringLiteral("%1.%2").arg(major).arg(minor);
}

QString Update_Template() {
    const QString custom = qEnvironmentVariable("MORVANE_UPDATE_URL").trimmed();
    return custom.isEmpty() ? LINK_CHECKUPDATE : custom;
}

QString Update_Url(const QString& linkTemplate, const QString& productName, const QString& version) {
    QString url = linkTemplate;
    url.replace(QLatin1String("PRODUCTNAME"), productName, Qt::CaseInsensitive);
    url.replace(QLatin1String("VERSION"), version, Qt::CaseInsensitive);
    url.replace(QLatin1Char(' '), QLatin1String("%20"));
    return url;
}

QString Update_ParseReply(const QString& reply, const QString& version) {
    const double running = leadingNumber(version);
    QString message;
    // Lines end in CR LF; a server that sends bare LF is read the same way.
    const QStringList lines = QString(reply).replace(QLatin1String("\r\n"), QLatin1String("\n")).split('\n');
    for (const QString& line : lines) {
        const QStringList items = line.split(QLatin1Char('/'));
        if (running < leadingNumber(items.first())) {
            message += QStringLiteral(" Version ") + items.first() + QLatin1String("\r\n");
            // Every change is closed by "/": what follows the last one is no change.
            for (qsizetype i = 1; i + 1 < items.size(); ++i)
                message +=
                    QString(17, QLatin1Char(' ')) + QLatin1String("- ") + items[i] + QLatin1String("\r\n");
        }
        if (!message.trimmed().isEmpty()) message += QLatin1String("\r\n");
    }
    return message;
}

bool Update_Evaluate(const QString& reply, const QString& version, QString& message) {
    message.clear();
    const QString text = reply.trimmed();
    if (text.isEmpty() || text == QLatin1String("0")) return false;
    message = Update_ParseReply(text, version);
    return !message.trimmed().isEmpty();
}

void Web_Fetch(const QUrl& url, int timeoutMs, QObject* owner, std::function<void(const QString&)> done) {
    // A manager per request: it goes with its owner, and a late reply then has no one to call.
    auto* manager = new QNetworkAccessManager(owner);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setHeader(QNetworkRequest::UserAgentHeader, PRODUCT_NAME + QLatin1Char('/') + PRODUCT_VERSION);
    QNetworkReply* reply = manager->get(request);

    // The limit is on the whole request, so that a server that trickles bytes ends too.
    auto* limit = new QTimer(reply);
    limit->setSingleShot(true);
    QObject::connect(limit, &QTimer::timeout, reply, [reply, url] {
        qCInfo(lcUpdate) << "update check: no answer from" << url.host() << "in time";
        reply->abort();
    });
    limit->start(timeoutMs);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > MaxReplyBytes) reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::finished, manager, [manager, reply, done = std::move(done)] {
        QString text;
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        // An error page is no list of versions, whatever its text.
        if (reply->error() == QNetworkReply::NoError && (status == 0 || (status >= 200 && status < 300)))
            text = QString::fromUtf8(reply->readAll());
        else
            qCInfo(lcUpdate) << "update check:" << reply->errorString();
        manager->deleteLater();
        done(text);
    });
}

void Update_Check(int timeoutMs, QObject* owner, std::function<void(bool found)> done) {
    const QString version = Update_RunningVersion(PRODUCT_VERSION);
    const QUrl url(Update_Url(Update_Template(), PRODUCT_NAME, version), QUrl::TolerantMode);
    Web_Fetch(url, timeoutMs, owner, [version, done = std::move(done)](const QString& text) {
        QString message;
        UpdateFound = Update_Evaluate(text, version, message);
        UpdateMessage = message;
        done(UpdateFound);
    });
}

namespace {

// One check with its trigger, from the request to the close of its answer window.
class UpdateRun : public QObject {
public:
    UpdateRun(QWidget* window, UpdateTrigger trigger, UpdateHooks hooks)
        : QObject(window), m_window(window), m_trigger(trigger), m_hooks(std::move(hooks)) {}

    void start() {
        Update_Check(m_hooks.timeoutMs, this, [this](bool found) {
            m_found = found;
            if (!found && m_trigger == UpdateTrigger::Start) {
                deleteLater();
                return;
            }
            // Not from inside the reply's signal: the answer window runs a loop of its own.
            QTimer::singleShot(0, this, &UpdateRun::present);
        });
    }

    void promote() { m_trigger = UpdateTrigger::Menu; }

private:
    void present() {
        if (!m_window->isVisible() || QApplication::activeModalWidget()) {
            QTimer::singleShot(PresentRetryMs, this, &UpdateRun::present);
            return;
        }
        if (m_found) {
            frmUpdates dialog(m_window, UpdateMessage, m_hooks.openPage);
            showModal(dialog);
        } else {
            frmNoUpdates dialog(m_window);
            showModal(dialog);
        }
        deleteLater();
    }

    void showModal(QDialog& dialog) {
        if (m_hooks.showModal)
            m_hooks.showModal(dialog);
        else
            dialog.exec();
    }

    QWidget* m_window; // the parent: it outlives this object
    UpdateTrigger m_trigger;
    UpdateHooks m_hooks;
    bool m_found = false;
};

QPointer<UpdateRun> s_running;

} // namespace

void Update_Run(QWidget* window, UpdateTrigger trigger, UpdateHooks hooks) {
    if (!window) return;
    if (trigger == UpdateTrigger::Start && !Update_Active) return;
    if (s_running) {
        if (trigger == UpdateTrigger::Menu) s_running->promote();
        return;
    }
    if (!hooks.openPage) hooks.openPage = [](const QUrl& page) { QDesktopServices::openUrl(page); };
    auto* run = new UpdateRun(window, trigger, std::move(hooks));
    s_running = run;
    run->start();
}

bool Update_Running() {
    return !s_running.isNull();
}

} // namespace morvane
