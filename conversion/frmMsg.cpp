#include "frmMsg.h"

#include "Globals.h"
#include "Skin_Icons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

frmMsg::frmMsg(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmMsg"));
    setModal(true);
    setWindowTitle(PRODUCT_NAME);

    auto* picture = new QLabel(this);
    picture->setObjectName(QStringLiteral("Pic_Completed"));
    picture->setPixmap(Skin_Picture(QStringLiteral("img_completed"), QSize(48, 48)));

    m_completed = new QLabel(QStringLiteral("Conversion is completed !"), this);
    m_completed->setObjectName(QStringLiteral("lbl_ConversionCompleted"));
    QFont font = m_completed->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    font.setBold(true);
    m_completed->setFont(font);

    const char* texts[] = {"Open output folder", "Close"};
    const char* icons[] = {"img_browse", "img_closeform"};
    for (int i = 0; i < 2; ++i) {
        m_buttons[i] = new QPushButton(Skin_Icon(QLatin1String(icons[i])), QLatin1String(texts[i]), this);
        m_buttons[i]->setObjectName(QStringLiteral("Cmd_Msg_%1").arg(i));
        m_buttons[i]->setIconSize(QSize(20, 20));
        m_buttons[i]->setMinimumWidth(i == 0 ? 170 : 96);
    }
    m_buttons[0]->setDefault(true);

    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(picture);
    top->addWidget(m_completed, 1);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(m_buttons[0]);
    buttons->addWidget(m_buttons[1]);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(22, 20, 22, 16);
    layout->setSpacing(18);
    layout->addLayout(top);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_buttons[0], &QPushButton::clicked, this, [this] {
        accept();
        emit openOutputRequested();
    });
    connect(m_buttons[1], &QPushButton::clicked, this, &QDialog::reject);
}

} // namespace morvane
