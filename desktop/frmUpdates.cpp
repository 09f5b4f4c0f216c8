#include "frmUpdates.h"

#include "Globals.h"
#include "Update_Check.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

frmUpdates::frmUpdates(QWidget* parent, const QString& message, PageOpener openPage)
    : QDialog(parent), m_openPage(std::move(openPage)) {
    setObjectName(QStringLiteral("frmUpdates"));
    setModal(true);
    setWindowTitle(PRODUCT_NAME + QStringLiteral(" Update"));

    m_label = new QLabel(
        QStringLiteral("There is a new version of ") + PRODUCT_NAME + QStringLiteral(" available !"), this);
    m_label->setObjectName(QStringLiteral("lbl_UpdateMsg"));
    m_label->setTextFormat(Qt::PlainText);
    QFont bold = m_label->font();
    bold.setBold(true);
    m_label->setFont(bold);

    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("Txt_UpdateMsg"));
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    // The text widget keeps a CR as a visible character.
    m_text->setPlainText(QString(message).replace(QLatin1String("\r\n"), QLatin1String("\n")));

    m_buttons[0] = new QPushButton(QStringLiteral("Close"), this);
    m_buttons[1] = new QPushButton(QStringLiteral("Download"), this);
    m_buttons[1]->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (int i = 0; i < 2; ++i) {
        m_buttons[i]->setObjectName(QStringLiteral("Cmd_Msg_%1").arg(i));
        buttons->addWidget(m_buttons[i]);
        connect(m_buttons[i], &QPushButton::clicked, this, [this, i] { Cmd_Msg_Click(i); });
    }

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_text, 1);
    layout->addLayout(buttons);
    resize(520, 320);
}

void frmUpdates::Cmd_Msg_Click(int index) {
    if (index == 1) {
        Update_Leaving = true;
        if (m_openPage) m_openPage(QUrl(LINK_HOMEPAGE1));
        accept();
    } else {
        reject();
    }
}

} // namespace morvane
