#include "frmSliderCtrl.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>

namespace morvane {

namespace {

constexpr int kGap = 4; // between knob and tip

} // namespace

frmSliderCtrl::frmSliderCtrl(QWidget* owner)
    : QWidget(owner, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus) {
    setObjectName(QStringLiteral("frmSliderCtrl"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);

    m_tip = new QLabel(this);
    m_tip->setObjectName(QStringLiteral("lblTip"));
    m_tip->setTextFormat(Qt::PlainText);
    m_tip->setAlignment(Qt::AlignCenter);
    m_tip->setForegroundRole(QPalette::ToolTipText);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(5, 2, 5, 2);
    layout->addWidget(m_tip);
}

void frmSliderCtrl::Show_Value(const QString& text, const QRect& knob, Qt::Orientation orientation) {
    m_tip->setText(text);
    adjustSize();
    const QSize tip = size();
    const QScreen* screen = this->screen();
    const QRect area = screen ? screen->availableGeometry() : QRect();
    QPoint at;
    if (orientation == Qt::Horizontal) {
        at = QPoint(knob.center().x() - tip.width() / 2, knob.top() - kGap - tip.height());
        if (area.isValid() && at.y() < area.top()) at.setY(knob.bottom() + 1 + kGap);
    } else {
        at = QPoint(knob.right() + 1 + kGap, knob.center().y() - tip.height() / 2);
        if (area.isValid() && at.x() + tip.width() > area.right() + 1)
            at.setX(knob.left() - kGap - tip.width());
    }
    move(at);
    if (!isVisible()) show();
}

} // namespace morvane
