#include "frmAbout.h"

#include "Globals.h"
#include "Skin_Icons.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
}

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

QString libraryVersion(unsigned version) {
    return QStringLiteral("%1.%2.%3")
        .arg(AV_VERSION_MAJOR(version))
        .arg(AV_VERSION_MINOR(version))
        .arg(AV_VERSION_MICRO(version));
}

QLabel* textLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

QString frmAbout::Library_Versions() {
    return QStringLiteral("Qt %1, FFmpeg %2 (libavformat %3, libavcodec %4)")
        .arg(QString::fromLatin1(qVersion()), QString::fromUtf8(av_version_info()),
             libraryVersion(avformat_version()), libraryVersion(avcodec_version()));
}

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setModal(true);
    setWindowTitle(QStringLiteral("About %1").arg(PRODUCT_NAME));

    auto* picture = new QLabel(this);
    const QIcon icon =
        qApp->windowIcon().isNull() ? Skin_Icon(QStringLiteral("img_convert")) : qApp->windowIcon();
    picture->setPixmap(icon.pixmap(QSize(64, 64)));
    picture->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    auto* name = textLabel(PRODUCT_NAME, this);
    name->setObjectName(QStringLiteral("lbl_Product"));
    QFont big = name->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    name->setFont(big);

    auto* version = textLabel(QStringLiteral("Version %1").arg(PRODUCT_VERSION), this);
    version->setObjectName(QStringLiteral("lbl_Version"));
    auto* company = textLabel(QStringLiteral("© %1").arg(COMPANY_NAME), this);
    company->setObjectName(QStringLiteral("lbl_Company"));
    auto* purpose = textLabel(QStringLiteral("Converts video files, one by one or merged into one, to the "
                                             "formats and devices of its catalogue."),
                              this);
    m_versions = textLabel(Library_Versions(), this);
    m_versions->setObjectName(QStringLiteral("lbl_Versions"));
    m_versions->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QPalette dim = m_versions->palette();
    dim.setColor(QPalette::WindowText, dim.color(QPalette::PlaceholderText));
    m_versions->setPalette(dim);

    auto* link = new QLabel(this);
    link->setObjectName(QStringLiteral("lbl_HomePage"));
    link->setTextFormat(Qt::RichText);
    link->setText(QStringLiteral("<a href=\"%1\">%2</a>")
                      .arg(LINK_HOMEPAGE1.toHtmlEscaped(), LINK_HOMEPAGE1.toHtmlEscaped()));
    link->setOpenExternalLinks(true);
    link->setTextInteractionFlags(Qt::TextBrowserInteraction);

    auto* text = new QVBoxLayout;
    text->setSpacing(6);
    text->addWidget(name);
    text->addWidget(version);
    text->addWidget(company);
    text->addSpacing(8);
    text->addWidget(purpose);
    text->addWidget(m_versions);
    text->addSpacing(4);
    text->addWidget(link);

    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    top->addWidget(picture, 0, Qt::AlignTop);
    top->addLayout(text, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 22, 24, 16);
    layout->setSpacing(14);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setFixedWidth(460);
}

} // namespace morvane
