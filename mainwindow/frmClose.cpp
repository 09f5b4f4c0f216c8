#include "frmClose.h"

#include "Globals.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QVBoxLayout>

namespace morvane {

frmClose::frmClose(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmClose"));
    setModal(true);
    setWindowTitle(PRODUCT_NAME);

    const char* texts[] = {"     Minimize to Tray", "     Exit"};
    const char* icons[] = {"img_close_tray", "img_close_exit"};
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(22, 20, 22, 16);
    layout->setSpacing(10);
    for (int i = 0; i < 2; ++i) {
        auto* button = new QPushButton(Skin_Icon(QLatin1String(icons[i])), QLatin1String(texts[i]), this);
        button->setObjectName(QStringLiteral("Cmd_Close_%1").arg(i));
        button->setIconSize(QSize(32, 32));
        button->setMinimumSize(260, 48);
        layout->addWidget(button);
        m_buttons[i] = button;
        connect(button, &QPushButton::clicked, this, [this, i] { choose(i == 0 ? 1 : 2); });
    }
    m_buttons[0]->setDefault(true);
    // A desktop without a tray cannot take the window there.
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        m_buttons[0]->setEnabled(false);
        m_buttons[0]->setToolTip(QStringLiteral("This desktop has no system tray"));
        m_buttons[1]->setDefault(true);
    }

    m_dontAsk = new QCheckBox(QStringLiteral("Don't ask me again."), this);
    m_dontAsk->setObjectName(QStringLiteral("Chk_DontAsk"));
    layout->addSpacing(4);
    layout->addWidget(m_dontAsk);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void frmClose::choose(int event) {
    Close_Event = event;
    Close_DontAsk = m_dontAsk->isChecked();
    accept();
}

void frmClose::reject() {
    Close_Event = 0;
    Close_DontAsk = false;
    QDialog::reject();
}

} // namespace morvane
