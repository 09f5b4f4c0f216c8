#include "frmWait.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

constexpr int kTextWidth = 380;

struct ModeLook {
    bool fileShown;
    const char* fileText; // nullptr: the caller's text
    bool fileNoShown;
    bool cancelShown;
    bool cancelEnabled;
    bool busy;
};

// By mode 0..5; anything else looks like mode 0.
constexpr ModeLook kLooks[] = {
    {true, nullptr, true, true, false, true},
    {true, nullptr, true, true, true, false},
    {true, "Closing...", false, false, false, true},
    {true, "Finalizing Progress...", false, true, true, true},
    {false, nullptr, false, true, true, true},
    {true, "Loading...", false, false, false, false},
};

} // namespace

frmWait::frmWait(QWidget* mainWindow, int mode)
    : QDialog(mainWindow, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), m_main(mainWindow),
      m_mode(mode) {
    setObjectName(QStringLiteral("frmWait"));
    setModal(false);

    m_waitFileNo = new QLabel(this);
    m_waitFileNo->setObjectName(QStringLiteral("lbl_WaitFileNo"));
    QFont bold = m_waitFileNo->font();
    bold.setBold(true);
    m_waitFileNo->setFont(bold);

    m_waitFile = new QLabel(this);
    m_waitFile->setObjectName(QStringLiteral("lbl_WaitFile"));
    m_waitFile->setTextFormat(Qt::PlainText);
    m_waitFile->setFixedWidth(kTextWidth);

    m_bar = new QProgressBar(this);
    m_bar->setObjectName(QStringLiteral("ProgressBar1"));
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(kTextWidth);

    m_cancel = new QPushButton(QStringLiteral("   Cancel   "), this);
    m_cancel->setObjectName(QStringLiteral("Cmd_Cancel"));
    m_cancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 18, 20, 16);
    layout->setSpacing(8);
    layout->addWidget(m_waitFileNo);
    layout->addWidget(m_waitFile);
    layout->addSpacing(4);
    layout->addWidget(m_bar);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_cancel, &QPushButton::clicked, this, [this] {
        emit cancelPressed();
        setMainEnabled(true);
    });
    // The main window may go before this window does (it owns it): forget it then.
    if (m_main != nullptr) connect(m_main, &QObject::destroyed, this, [this] { m_main = nullptr; });

    applyMode();
}

frmWait::~frmWait() {
    setMainEnabled(true);
}

void frmWait::applyMode() {
    const ModeLook& look = kLooks[m_mode >= 0 && m_mode <= 5 ? m_mode : 0];
    m_waitFile->setVisible(look.fileShown);
    if (look.fileText != nullptr) setFile(QString::fromLatin1(look.fileText));
    m_waitFileNo->setVisible(look.fileNoShown);
    m_cancel->setVisible(look.cancelShown);
    m_cancel->setEnabled(look.cancelEnabled);
    m_busy = look.busy;
    if (m_busy)
        m_bar->setRange(0, 0);
    else
        m_bar->setRange(0, 100);
}

void frmWait::setCaption(const QString& caption) {
    setWindowTitle(caption);
}

void frmWait::setFileNo(const QString& text) {
    m_waitFileNo->setText(text);
}

void frmWait::setFile(const QString& text) {
    // Long paths would stretch the window: keep the middle out, the whole text in the tool tip.
    m_waitFile->setText(m_waitFile->fontMetrics().elidedText(text, Qt::ElideMiddle, kTextWidth));
    m_waitFile->setToolTip(text);
}

void frmWait::setMaximum(int maximum) {
    if (m_busy) return;
    m_bar->setRange(0, qMax(0, maximum));
}

void frmWait::setValue(int value) {
    if (m_busy) return;
    m_bar->setValue(qBound(m_bar->minimum(), value, m_bar->maximum()));
}

void frmWait::setMainEnabled(bool enabled) {
    if (m_main == nullptr || m_mainDisabled == !enabled) return;
    m_mainDisabled = !enabled;
    m_main->setEnabled(enabled);
    // Disabling the owner reaches this window too; a top-level window may be enabled on its own.
    if (!enabled) setEnabled(true);
}

void frmWait::showEvent(QShowEvent* event) {
    setMainEnabled(false);
    QDialog::showEvent(event);
}

void frmWait::hideEvent(QHideEvent* event) {
    setMainEnabled(true);
    QDialog::hideEvent(event);
}

void frmWait::closeEvent(QCloseEvent* event) {
    // Only the host closes the wait window; the user has Cancel where the mode offers it.
    if (event->spontaneous()) {
        event->ignore();
        return;
    }
    event->accept();
}

void frmWait::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        event->ignore();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace morvane
