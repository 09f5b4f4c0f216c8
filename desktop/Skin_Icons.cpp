#include "Skin_Icons.h"

#include <QPainter>

namespace morvane {

QStringList Skin_Roles() {
    return {};
}

QIcon Skin_Icon(const QString& role) {
    (void)role;
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::gray);
    return QIcon(pixmap);
}

QPixmap Skin_Picture(const QString& role, QSize size) {
    return Skin_Icon(role).pixmap(size);
}

QIcon Skin_StateIcon(int image) {
    if (image < 1 || image > 13) return QIcon();
    return Skin_Icon(QStringLiteral("state"));
}

QIcon Skin_StoreIcon(int number) {
    return Skin_Icon(QString::number(number));
}

} // namespace morvane
