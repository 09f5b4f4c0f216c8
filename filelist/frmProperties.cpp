#include "frmProperties.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QTabWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace morvane {

namespace {

constexpr int kPictureWidth = 160;
constexpr int kPictureHeight = 120;
constexpr int kValueWidth = 320;

QLabel* headingLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace

frmProperties::frmProperties(const FileViewMain& table, int row, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmProperties"));
    setWindowTitle(QStringLiteral("Properties"));
    setModal(true);

    const FileProperties properties = Read_Properties(table, row);

    m_picPreview = new QLabel(this);
    m_picPreview->setObjectName(QStringLiteral("picPreview"));
    m_picPreview->setFixedSize(kPictureWidth, kPictureHeight);
    m_picPreview->setAlignment(Qt::AlignCenter);
    m_picPreview->setFrameShape(QFrame::StyledPanel);
    const QPixmap picture(properties.thumbnail);
    if (!properties.thumbnail.isEmpty() && !picture.isNull())
        m_picPreview->setPixmap(picture.scaled(m_picPreview->size() - QSize(2, 2), Qt::KeepAspectRatio,
                                               Qt::SmoothTransformation));

    m_title = headingLabel(properties.fileName, this);
    m_title->setObjectName(QStringLiteral("lbl_Title"));
    m_title->setTextFormat(Qt::PlainText);
    m_fileName = new QLineEdit(properties.path, this);
    m_fileName->setObjectName(QStringLiteral("Txt_FileName"));
    m_fileName->setReadOnly(true);
    m_fileName->setCursorPosition(0);

    auto* head = new QVBoxLayout;
    head->addWidget(m_title);
    head->addWidget(m_fileName);
    head->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(m_picPreview);
    top->addLayout(head, 1);

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("TabControl1"));
    m_tabs->addTab(buildTab(properties.values, Prop_Name, Prop_Attributes), QStringLiteral("General"));
    m_tabs->addTab(buildTab(properties.values, Prop_Duration, Prop_Channels), QStringLiteral("Media"));
    m_tabs->addTab(buildTab(properties.values, Prop_Title, Prop_Copyright), QStringLiteral("Tags"));

    m_buttons[0] = new QPushButton(QStringLiteral("Close"), this);
    m_buttons[1] = new QPushButton(QStringLiteral("Open File Location"), this);
    for (int i = 0; i < 2; ++i)
        m_buttons[i]->setObjectName(QStringLiteral("Cmd_Properties_%1").arg(i));
    m_buttons[0]->setDefault(true);
    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::accept);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmProperties::openLocation);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_buttons[1]);
    buttons->addStretch();
    buttons->addWidget(m_buttons[0]);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_tabs, 1);
    layout->addLayout(buttons);
}

// Caption and value side by side, one line per entry; the streams' tab splits into its two streams.
QWidget* frmProperties::buildTab(const PropertyTexts& values, int first, int last) {
    auto* page = new QWidget(this);
    auto* grid = new QGridLayout(page);
    grid->setColumnStretch(1, 1);
    // The same caption column on every tab, so that the values don't jump when the tab changes.
    int captionWidth = 0;
    for (const QString& caption : Property_Captions())
        captionWidth = std::max(captionWidth, page->fontMetrics().horizontalAdvance(caption));
    grid->setColumnMinimumWidth(0, captionWidth);
    grid->setHorizontalSpacing(12);
    int line = 0;
    m_captions.resize(Prop_Count);
    m_values.resize(Prop_Count);
    for (int i = first; i <= last; ++i) {
        if (i == Prop_VideoCodec || i == Prop_AudioCodec) {
            auto* heading =
                headingLabel(i == Prop_VideoCodec ? QStringLiteral("Video") : QStringLiteral("Audio"), page);
            grid->addWidget(heading, line++, 0, 1, 2);
        }
        auto* caption = new QLabel(Property_Captions()[i], page);
        caption->setObjectName(QStringLiteral("lbl_Titles_%1").arg(i));
        caption->setAlignment(Qt::AlignRight | Qt::AlignTop);
        auto* value = new QLabel(values[i], page);
        value->setObjectName(QStringLiteral("lbl_Infos_%1").arg(i));
        value->setTextFormat(Qt::PlainText); // tags are the file's own text, never mark-up
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setWordWrap(true);
        value->setMinimumWidth(kValueWidth);
        grid->addWidget(caption, line, 0);
        grid->addWidget(value, line++, 1);
        m_captions[i] = caption;
        m_values[i] = value;
    }
    grid->setRowStretch(line, 1);
    return page;
}

void frmProperties::openLocation() {
    const QString path = m_fileName->text();
    if (path.trimmed().isEmpty()) return;
    if (m_openLocation)
        m_openLocation(path);
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

void Show_Properties(QWidget* parent, const FileViewMain& table, int row,
                     frmProperties::OpenLocation openLocation) {
    if (row < 0 || row >= table.rows()) return;
    frmProperties window(table, row, parent);
    window.setOpenLocation(std::move(openLocation));
    window.exec();
}

} // namespace morvane
