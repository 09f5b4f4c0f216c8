#include "frmNewPreset.h"

#include "mMain.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

frmNewPreset::frmNewPreset(const QString& title, const QString& label, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmNewPreset"));
    setWindowTitle(title);
    setModal(true);

    m_label = new QLabel(label, this);
    m_label->setObjectName(QStringLiteral("lbl_PresetName"));
    m_box = new QLineEdit(this);
    m_box->setObjectName(QStringLiteral("Txt_PresetName"));
    m_box->setMinimumWidth(260);
    m_label->setBuddy(m_box);

    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("Cmd_Panel_0"));
    m_accept = new QPushButton(QStringLiteral("OK"), this);
    m_accept->setObjectName(QStringLiteral("Cmd_Panel_1"));
    // Enter is ours: it accepts only a name, whichever control has the focus.
    for (QPushButton* button : {m_cancel, m_accept}) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_accept);
    buttons->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_box);
    layout->addLayout(buttons);

    connect(m_cancel, &QPushButton::clicked, this, &frmNewPreset::reject);
    connect(m_accept, &QPushButton::clicked, this, &frmNewPreset::accept);

    m_timer.setObjectName(QStringLiteral("Timer_CheckEmpty"));
    m_timer.setInterval(100);
    connect(&m_timer, &QTimer::timeout, this, &frmNewPreset::Timer_CheckEmpty_Timer);
    m_timer.start();
    Timer_CheckEmpty_Timer();
}

bool frmNewPreset::hasName() const {
    return !Trim_Spaces(m_box->text()).isEmpty();
}

void frmNewPreset::Timer_CheckEmpty_Timer() {
    m_accept->setEnabled(hasName());
}

void frmNewPreset::accept() {
    if (!hasName()) return;
    m_name = m_box->text();
    QDialog::accept();
}

void frmNewPreset::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        accept();
        return;
    }
    QDialog::keyPressEvent(event); // Escape rejects
}

QString frmNewPreset::Ask(QWidget* parent, const QString& title, const QString& label) {
    frmNewPreset dialog(title, label, parent);
    dialog.exec();
    return dialog.NewPresetName();
}

} // namespace morvane
