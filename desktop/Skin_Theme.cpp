#include "Skin_Theme.h"

#include "Skin_Icons.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace morvane {

namespace {

QPalette lightPalette() {
    QPalette p;
    p.setColor(QPalette::Window, QColor(0xf3, 0xf4, 0xf6));
    p.setColor(QPalette::WindowText, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Base, Qt::white);
    p.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf8, 0xfa));
    p.setColor(QPalette::Text, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Button, QColor(0xfb, 0xfb, 0xfc));
    p.setColor(QPalette::ButtonText, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Highlight, QColor(0x00, 0x7a, 0xff));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf0));
    p.setColor(QPalette::ToolTipText, Qt::black);
    p.setColor(QPalette::PlaceholderText, QColor(0x6b, 0x70, 0x78));
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0xa0, 0xa4, 0xaa));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0xa0, 0xa4, 0xaa));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0xa0, 0xa4, 0xaa));
    return p;
}

QPalette darkPalette() {
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x2b, 0x2d, 0x31));
    p.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Base, QColor(0x1f, 0x21, 0x24));
    p.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2c));
    p.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Button, QColor(0x36, 0x39, 0x3e));
    p.setColor(QPalette::ButtonText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Highlight, QColor(0x00, 0x7a, 0xff));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x36, 0x39, 0x3e));
    p.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9e, 0xa6));
    p.setColor(QPalette::Light, QColor(0x45, 0x48, 0x4e));
    p.setColor(QPalette::Midlight, QColor(0x3a, 0x3d, 0x42));
    p.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x36));
    p.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    p.setColor(QPalette::Shadow, Qt::black);
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x70, 0x74, 0x7a));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x70, 0x74, 0x7a));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x70, 0x74, 0x7a));
    return p;
}

} // namespace

void Apply_Theme(QApplication& app, int themeNo) {
    if (themeNo != 1 && themeNo != 2) return;
    app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    app.setPalette(themeNo == 1 ? lightPalette() : darkPalette());
    Skin_ClearCache();
}

} // namespace morvane
