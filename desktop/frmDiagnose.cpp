#include "frmDiagnose.h"

#include "Globals.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace morvane {

namespace {

// A long run with the log on would otherwise grow the pane without end.
constexpr int kLogLines = 5000;

QPlainTextEdit* makeBox(const QString& name, QWidget* parent) {
    auto* box = new QPlainTextEdit(parent);
    box->setObjectName(name);
    box->setReadOnly(true);
    box->setLineWrapMode(QPlainTextEdit::NoWrap);
    return box;
}

QLineEdit* makeLine(const QString& name, QWidget* parent) {
    auto* line = new QLineEdit(parent);
    line->setObjectName(name);
    line->setReadOnly(true);
    return line;
}

// The widget breaks lines itself and would show a CR as a character.
void appendText(QPlainTextEdit* box, const QString& text) {
    box->moveCursor(QTextCursor::End);
    box->insertPlainText(QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    box->moveCursor(QTextCursor::End);
}

} // namespace

frmDiagnose::frmDiagnose(std::unique_ptr<DiagnoseHost> host, QWidget* parent)
    : QWidget(parent, Qt::Window), m_host(std::move(host)) {
    setObjectName(QStringLiteral("frmDiagnose"));
    setWindowTitle(QStringLiteral("Diagnostics"));

    auto* tests = new QWidget(this);
    const char* captions[] = {"Test Audio All", "Test Preset", "Test Video Codec Only"};
    auto* buttons = new QHBoxLayout;
    for (int i = 0; i < 3; ++i) {
        m_tests.at(static_cast<size_t>(i)) = new QPushButton(QString::fromLatin1(captions[i]), tests);
        m_tests.at(static_cast<size_t>(i))->setObjectName(QStringLiteral("Cmd_Test_%1").arg(i));
        buttons->addWidget(m_tests.at(static_cast<size_t>(i)));
    }
    m_chkTest = new QCheckBox(QStringLiteral("Test"), tests);
    m_chkTest->setObjectName(QStringLiteral("Chk_Test"));
    buttons->addWidget(m_chkTest);
    buttons->addStretch(1);
    m_result = makeBox(QStringLiteral("Txt_TestResult"), tests);
    m_resultLine = makeLine(QStringLiteral("Txt_ResultLine"), tests);
    m_time = makeLine(QStringLiteral("Txt_Time"), tests);
    m_command1 = new QPushButton(QStringLiteral("Get Parameters"), tests);
    m_command1->setObjectName(QStringLiteral("Command1"));
    m_text1 = makeLine(QStringLiteral("Text1"), tests);
    auto* status = new QGridLayout;
    status->addWidget(new QLabel(QStringLiteral("Result line:"), tests), 0, 0);
    status->addWidget(m_resultLine, 0, 1);
    status->addWidget(new QLabel(QStringLiteral("Time:"), tests), 1, 0);
    status->addWidget(m_time, 1, 1);
    status->addWidget(m_command1, 2, 0);
    status->addWidget(m_text1, 2, 1);
    auto* left = new QVBoxLayout(tests);
    left->addLayout(buttons);
    left->addWidget(m_result, 1);
    left->addLayout(status);

    auto* logs = new QWidget(this);
    m_chkLog = new QCheckBox(QStringLiteral("Encoder log"), logs);
    m_chkLog->setObjectName(QStringLiteral("Chk_EngLog"));
    m_filter = new QLineEdit(logs);
    m_filter->setObjectName(QStringLiteral("Txt_Filter"));
    m_filter->setPlaceholderText(QStringLiteral("Filter"));
    m_clearLog = new QPushButton(QStringLiteral("Clear Log"), logs);
    m_clearLog->setObjectName(QStringLiteral("Cmd_ClearLog"));
    m_log = makeBox(QStringLiteral("txtLog"), logs);
    m_log->setMaximumBlockCount(kLogLines);
    m_events = makeBox(QStringLiteral("txt_EventsLog"), logs);
    auto* logBar = new QHBoxLayout;
    logBar->addWidget(m_chkLog);
    logBar->addWidget(m_filter, 1);
    logBar->addWidget(m_clearLog);
    auto* right = new QVBoxLayout(logs);
    right->addLayout(logBar);
    right->addWidget(m_log, 3);
    right->addWidget(m_events, 1);

    auto* split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(tests);
    split->addWidget(logs);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(split);
    resize(1000, 560);
    setupConnections();
}

frmDiagnose::~frmDiagnose() = default;

void frmDiagnose::setupConnections() {
    for (int i = 0; i < 3; ++i)
        connect(m_tests.at(static_cast<size_t>(i)), &QPushButton::clicked, this,
                [this, i] { Cmd_Test_Click(i); });
    connect(m_clearLog, &QPushButton::clicked, m_log, &QPlainTextEdit::clear);
    connect(m_command1, &QPushButton::clicked, this,
            [this] { m_text1->setText(QStringLiteral("not available")); });
}

void frmDiagnose::Cmd_Test_Click(int index) {
    // The run lets events through, so a second press could start a run inside this one; and Convert
    // pressed during the user's own conversion would pause it.
    if (m_running || Test_Running || index < 0 || index > 2 || m_host->Get_ConversionState() != 0) return;
    m_running = true;
    m_cancel = false;
    for (QPushButton* b : m_tests)
        b->setEnabled(false);
    Diagnose_Run(*m_host, index);
    for (QPushButton* b : m_tests)
        b->setEnabled(true);
    m_running = false;
}

void frmDiagnose::Diagnose_Log(const QString& text) {
    if (m_chkLog->isChecked()) appendText(m_log, text + QStringLiteral("\r\n"));
}

void frmDiagnose::Add_Result(const QString& line) {
    appendText(m_result, line);
}

void frmDiagnose::Show_ResultLine(const QString& line, const QString& time) {
    m_resultLine->setText(line);
    m_time->setText(time);
}

// The window only hides: a run may be on the stack below this event, and it ends after its step.
void frmDiagnose::closeEvent(QCloseEvent* event) {
    if (m_running) m_cancel = true;
    event->accept();
}

} // namespace morvane
