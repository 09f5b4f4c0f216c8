#include "frmNoUpdates.h"

#include "Globals.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

frmNoUpdates::frmNoUpdates(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmNoUpdates"));
    setModal(true);
    setWindowTitle(PRODUCT_NAME);

    m_label =
        new QLabel(QStringLiteral("You have the latest version of ") + PRODUCT_NAME + QLatin1Char('.'), this);
    m_label->setObjectName(QStringLiteral("lbl_Msg"));
    m_label->setTextFormat(Qt::PlainText);

    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("Cmd_OK"));
    m_ok->setDefault(true);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_ok);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 14);
    layout->setSpacing(16);
    layout->addWidget(m_label);
    layout->addLayout(buttons);
}

} // namespace morvane
