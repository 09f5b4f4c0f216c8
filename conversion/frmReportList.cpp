#include "frmReportList.h"

#include "Globals.h"
#include "Skin_Icons.h"
#include "mMain.h"

#include <QEventLoop>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace morvane {

frmReportList::frmReportList(QWidget* mainWindow) : QDialog(mainWindow), m_main(mainWindow) {
    setObjectName(QStringLiteral("frmReportList"));
    setModal(false);
    m_network = new QNetworkAccessManager(this);

    m_icon = new QToolButton(this);
    m_icon->setObjectName(QStringLiteral("Cmd_Icon"));
    m_icon->setAutoRaise(true);
    m_icon->setFocusPolicy(Qt::NoFocus);
    m_icon->setIconSize(QSize(32, 32));

    m_msg = new QLabel(this);
    m_msg->setObjectName(QStringLiteral("lbl_Msg"));
    m_msg->setTextFormat(Qt::PlainText);
    m_msg->setWordWrap(true);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("View_ListBox"));
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Reason")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->header()->setStretchLastSection(true);
    m_list->header()->resizeSection(0, 240);
    m_list->setMinimumSize(520, 220);

    m_panels[0] = new QPushButton(QStringLiteral("Close"), this);
    m_panels[1] = new QPushButton(QStringLiteral("Send"), this);
    for (int i = 0; i < 2; ++i) {
        m_panels[i]->setObjectName(QStringLiteral("Cmd_Panels_%1").arg(i));
        m_panels[i]->setMinimumWidth(84);
    }
    m_panels[0]->setDefault(true);

    auto* top = new QHBoxLayout;
    top->setSpacing(12);
    top->addWidget(m_icon, 0, Qt::AlignTop);
    top->addWidget(m_msg, 1);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(m_panels[1]);
    buttons->addWidget(m_panels[0]);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 14);
    layout->setSpacing(10);
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);

    setupConnections();
}

frmReportList::~frmReportList() {
    setMainEnabled(true);
}

void frmReportList::setupConnections() {
    connect(m_panels[0], &QPushButton::clicked, this, &frmReportList::closeReport);
    connect(m_panels[1], &QPushButton::clicked, this, &frmReportList::sendReport);
    // The main window may go before this window does (it owns it): forget it then.
    if (m_main != nullptr) connect(m_main, &QObject::destroyed, this, [this] { m_main = nullptr; });
}

void frmReportList::Show_Report(const ReportForm& form) {
    m_entries = form.entries;
    m_list->clear();
    for (const ReportEntry& entry : form.entries) {
        auto* item = new QTreeWidgetItem(m_list, {entry.text, entry.second});
        item->setToolTip(0, entry.text);
        item->setToolTip(1, entry.second);
    }

    QFont font = m_msg->font();
    font.setPointSize(form.messageSize);
    m_msg->setFont(font);
    m_msg->setText(form.message);
    setWindowTitle(form.caption);

    const QIcon icon = Skin_StoreIcon(form.icon);
    const int side = form.iconSize == 3 ? 48 : 32;
    m_icon->setIcon(icon);
    m_icon->setIconSize(QSize(side, side));
    setWindowIcon(icon);

    setMainEnabled(false);
    show();
    raise();
    activateWindow();
}

void frmReportList::setMainEnabled(bool enabled) {
    if (m_main == nullptr || m_mainDisabled == !enabled) return;
    m_mainDisabled = !enabled;
    m_main->setEnabled(enabled);
    // Disabling the owner reaches this window too; a top-level window may be enabled on its own.
    if (!enabled) setEnabled(true);
}

void frmReportList::reject() {
    if (m_sending) return;
    closeReport();
}

void frmReportList::closeReport() {
    Report_Clear();
    m_list->clear();
    m_entries.clear();
    setMainEnabled(true);
    QDialog::reject();
}

void frmReportList::sendReport() {
    if (m_sending) return;
    m_sending = true;
    m_panels[0]->setEnabled(false);
    m_panels[1]->setEnabled(false);

    const QStringList version = PRODUCT_VERSION.split(QLatin1Char('.'));
    m_toSend =
        Report_SendText(m_entries, version.value(0).toInt(), version.value(1).toInt(), Report_RandomNumber());
    // The report goes into the link as it stands: QUrl escapes only what a request line can't carry.
    const QPointer<frmReportList> self(this);
    sendRequest(QUrl(LINK_SEND_REPORT + m_toSend, QUrl::TolerantMode));
    if (self.isNull()) return;

    // Sent, refused or timed out, the user gets the same thanks: a report that can't be sent is no
    // reason to bother them, and there is nothing they could do about it.
    Show_Message(QStringLiteral("Thank you."), MB_ICONINFORMATION, QString());
    if (self.isNull()) return;

    m_sending = false;
    m_panels[0]->setEnabled(true);
    m_panels[1]->setEnabled(true);
    closeReport();
}

bool frmReportList::sendRequest(const QUrl& url) {
    if (!url.isValid()) return false;
    const QPointer<QNetworkReply> reply = m_network->get(QNetworkRequest(url));
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    // The window (and the manager with the reply) may go while the loop runs.
    connect(reply, &QObject::destroyed, &loop, &QEventLoop::quit);
    connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(m_sendTimeout);
    if (!reply->isFinished()) loop.exec();
    if (reply.isNull()) return false;

    const bool sent = reply->isFinished() && reply->error() == QNetworkReply::NoError;
    if (!reply->isFinished()) reply->abort();
    delete reply;
    return sent;
}

} // namespace morvane
