#include "frmPreferences.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

QLabel* heading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

// A heading with its options indented below it.
QVBoxLayout* section(QVBoxLayout* outer, const QString& title, QWidget* parent) {
    outer->addWidget(heading(title, parent));
    auto* body = new QVBoxLayout;
    body->setContentsMargins(16, 2, 0, 10);
    body->setSpacing(4);
    outer->addLayout(body);
    return body;
}

QButtonGroup* optionArray(const QString& name, const QStringList& texts, QVBoxLayout* body, QWidget* parent) {
    auto* group = new QButtonGroup(parent);
    for (int i = 0; i < texts.size(); ++i) {
        auto* option = new QRadioButton(texts[i], parent);
        option->setObjectName(QStringLiteral("%1_%2").arg(name).arg(i));
        group->addButton(option, i);
        body->addWidget(option);
    }
    return group;
}

} // namespace

frmPreferences::frmPreferences(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmPreferences"));
    setModal(true);
    setWindowTitle(QStringLiteral("Preferences"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(22, 18, 22, 16);
    layout->setSpacing(4);

    QVBoxLayout* updates = section(layout, QStringLiteral("Updates"), this);
    m_checkUpdates = new QCheckBox(QStringLiteral("Automatically check for updates"), this);
    m_checkUpdates->setObjectName(QStringLiteral("Chk_CheckUpdates"));
    updates->addWidget(m_checkUpdates);

    QVBoxLayout* closing = section(layout, QStringLiteral("When closing the main window"), this);
    m_close = optionArray(
        QStringLiteral("Opt_Close"),
        {QStringLiteral("Minimize to Tray"), QStringLiteral("Exit"), QStringLiteral("Always ask me")},
        closing, this);

    QVBoxLayout* output = section(layout, QStringLiteral("Output file name"), this);
    m_conversion =
        optionArray(QStringLiteral("Opt_Conversion"),
                    {QStringLiteral("Overwrite existing file"), QStringLiteral("Automatically rename files")},
                    output, this);

    const char* texts[] = {"Cancel", "Close", "Default"};
    for (int i = 0; i < 3; ++i) {
        m_panels[i] = new QPushButton(QLatin1String(texts[i]), this);
        m_panels[i]->setObjectName(QStringLiteral("Cmd_Panels_%1").arg(i));
        m_panels[i]->setMinimumWidth(84);
    }
    m_panels[1]->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_panels[2]);
    buttons->addStretch();
    buttons->addWidget(m_panels[0]);
    buttons->addWidget(m_panels[1]);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    showValues(Preferences_Load());
    setupConnections();
}

void frmPreferences::setupConnections() {
    connect(m_panels[0], &QPushButton::clicked, this, &QDialog::reject);
    connect(m_panels[1], &QPushButton::clicked, this, [this] {
        Preferences_Apply(values());
        accept();
    });
    connect(m_panels[2], &QPushButton::clicked, this, [this] { showValues(Preferences_Default()); });
}

PreferencesForm frmPreferences::values() const {
    PreferencesForm form;
    form.checkUpdates = m_checkUpdates->isChecked();
    form.optClose = m_close->checkedId() < 0 ? 2 : m_close->checkedId();
    form.optConversion = m_conversion->checkedId() == 0 ? 0 : 1;
    return form;
}

void frmPreferences::showValues(const PreferencesForm& form) {
    m_checkUpdates->setChecked(form.checkUpdates);
    if (QAbstractButton* option = m_close->button(form.optClose)) option->setChecked(true);
    if (QAbstractButton* option = m_conversion->button(form.optConversion)) option->setChecked(true);
}

QRadioButton* frmPreferences::Opt_Close(int index) const {
    return qobject_cast<QRadioButton*>(m_close->button(index));
}

QRadioButton* frmPreferences::Opt_Conversion(int index) const {
    return qobject_cast<QRadioButton*>(m_conversion->button(index));
}

} // namespace morvane
