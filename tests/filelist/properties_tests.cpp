// The properties rows of a list item, and their window, over rows made by hand and over clips that the
// ffmpeg program makes at test time and the real reader probes.
#include "FFDecoder.h"
#include "FileList_Mods.h"
#include "File_Properties.h"
#include "Globals.h"
#include "frmProperties.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

// Readable QString values in failure messages.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

using namespace morvane;

namespace {

const QString NA = QStringLiteral("Not Available");

QString userName(uid_t uid) {
    const passwd* entry = ::getpwuid(uid);
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(uid);
}

// A clip of one second, video only, with a title and a year; "" without the ffmpeg program.
QString makeClip(const QTemporaryDir& dir, const QString& name) {
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty()) return {};
    const QString path = dir.filePath(name);
    QProcess process;
    process.start(ffmpeg,
                  {"-v", "error", "-y", "-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=1",
                   "-c:v", "mpeg4", "-metadata", "title=Harbour at dusk", "-metadata", "date=2024", path});
    return process.waitForFinished(60000) && process.exitCode() == 0 ? path : QString();
}

// Probes the clips into a table, as an import does.
void probe(FileViewMain& table, const QTemporaryDir& dir, const QStringList& paths) {
    Folder_Temp = dir.filePath(QStringLiteral("temp/"));
    QDir().mkpath(Folder_Temp);
    const std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
    for (const QString& path : paths)
        Fill_Item(path, 0, table, *decoder);
}

} // namespace

TEST(FileProperties, SizeTextsAcrossUnits) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"1023", "1023 bytes"}, {" 0 ", "0 bytes"}, {"1024", "1.00 kB"}, {"1152", "1.13 kB"},
        {"10239", "10.00 kB"}, {"10240", "10.0 kB"}, {"102399", "100.0 kB"}, {"102400", "100 kB"},
        {"1023999", "1000 kB"}, {"1024000", "0.98 MB"}, {"1048576", "1.00 MB"}, {"1073741824", "1.00 GB"},
        {"1099511627776", "1.00 TB"}, {"1152921504606846976", "1.00 EB"},
        {"1208925819614629174706176", "1.00 YB"}, {"1e30", "827181 YB"}, {"1536.5", "1.50 kB"},
        {"", ""}, {"12 kB", ""}, {"size", ""},
    };
    // clang-format on
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(Format_FileSize(QString::fromLatin1(value)), QString::fromLatin1(expected)) << value;
    EXPECT_EQ(Format_FileTime(QDateTime(QDate(2024, 3, 5), QTime(14, 7, 9))),
              QStringLiteral("Tuesday, March 05, 2024, 02:07:09 PM"));
    EXPECT_EQ(Format_FileTime(QDateTime(QDate(2023, 12, 31), QTime(0, 0, 1))),
              QStringLiteral("Sunday, December 31, 2023, 12:00:01 AM"));
}

// One probed-looking row, a cell or two changed per case: which texts count as nothing known, and
// that units follow only a known value.
TEST(FileProperties, NotAvailableRule) {
    using Cells = std::vector<std::pair<int, const char*>>;
    using namespace FileCol;
    // clang-format off
    const Cells probed = {{FileName, "clip.mp4"}, {FilePath, "/nowhere/"}, {Duration, "00:01:05"},
        {VideoStream, "-1"}, {VideoCodecName, "h264"}, {VideoWidth, "640"}, {VideoHeight, "360"},
        {VideoBitRate, "1500000"}, {VideoFrameRateNumerator, "29"}, {VideoSampleAspectRatio, "1.78"},
        {AudioStream, "-1"}, {AudioCodecName, "aac"}, {AudioBitRate, "128000"}, {AudioSampleRate, "44100"},
        {AudioChannels, "2"}, {FileYear, "0"}};
    const struct { Cells edit; int entry; const char* expected; } cases[] = {
        {{}, Prop_FrameSize, "640 x 360 pixels"},
        {{{VideoWidth, "-1"}, {VideoHeight, "-1"}}, Prop_FrameSize, "Not Available"},
        {{{VideoWidth, ""}, {VideoHeight, ""}}, Prop_FrameSize, "Not Available"},
        {{{VideoWidth, "0"}}, Prop_FrameSize, "0 x 360 pixels"},
        {{}, Prop_FrameRate, "29 frames/second"},
        {{{VideoFrameRateNumerator, "-1"}}, Prop_FrameRate, "Not Available"},
        {{}, Prop_Aspect, "1.78:1 - (16:9)  Widescreen"},
        {{{VideoSampleAspectRatio, "1"}}, Prop_Aspect, "Not Available"},
        {{{VideoSampleAspectRatio, "1.50"}}, Prop_Aspect, "1.50:1"},
        {{}, Prop_VideoBitRate, "1500 kbps"},
        {{{VideoBitRate, "0"}}, Prop_VideoBitRate, "Not Available"},
        {{{VideoCodecName, "  "}}, Prop_VideoCodec, "Not Available"},
        {{}, Prop_SampleRate, "44100 Hz"},
        {{{AudioSampleRate, "0"}}, Prop_SampleRate, "Not Available"},
        {{{AudioChannels, "-1"}}, Prop_Channels, "Not Available"},
        {{{AudioBitRate, "-1"}}, Prop_AudioBitRate, "Not Available"},
        {{{Duration, "00:00:00"}}, Prop_Duration, "00:00:00"},
        {{}, Prop_Year, "Not Available"},
        {{{FileYear, "1999"}}, Prop_Year, "1999"},
        {{{FileGenre, " x "}}, Prop_Genre, "Not Available"},
        // A stream the row hasn't got, whatever the reader left in its cells.
        {{{VideoStream, "0"}}, Prop_FrameSize, "Not Available"},
        {{{VideoStream, "0"}}, Prop_Aspect, "Not Available"},
        {{{AudioStream, "0"}}, Prop_SampleRate, "Not Available"},
    };
    // clang-format on
    for (const auto& c : cases) {
        FileViewMain table;
        table.addRow();
        for (const Cells& cells : {probed, c.edit})
            for (const auto& [column, text] : cells)
                table.setText(0, column, QString::fromLatin1(text));
        EXPECT_EQ(Read_Properties(table, 0).values[c.entry], QString::fromLatin1(c.expected))
            << Property_Captions()[c.entry].toStdString();
    }
    for (const QString& text : Read_Properties(FileViewMain(), 0).values)
        EXPECT_EQ(text, NA);
}

// Hidden is the leading dot; read-only is the write bit of the class this user falls in, also for root.
TEST(FileProperties, AttributesAsLinuxHasThem) {
    QTemporaryDir dir;
    const uid_t me = ::geteuid();
    const uid_t stranger = 54321; // only root can hand a file to someone else
    // clang-format off
    const struct { const char* name; mode_t mode; bool foreign; const char* expected; } cases[] = {
        {"plain.mp4", 0644, false, "Normal, rw-r--r--"},
        {".night.mkv", 0444, false, "Hidden, Read-only, r--r--r--"},
        {".draft.avi", 0700, false, "Hidden, rwx------"},
        {"theirs.mp4", 0406, true, "Normal, r-----rw-"},
        {"shared.mp4", 0624, true, "Read-only, rw--w-r--"},
    };
    // clang-format on
    for (const auto& c : cases) {
        if (c.foreign && me != 0) continue;
        const QString path = dir.filePath(QLatin1String(c.name));
        const QByteArray file = QFile::encodeName(path);
        ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
        ASSERT_EQ(::chmod(file.constData(), c.mode), 0);
        if (c.foreign) {
            ASSERT_EQ(::chown(file.constData(), stranger, stranger), 0);
        }
        EXPECT_EQ(File_Attributes(path), QLatin1String(c.expected) + QStringLiteral(", Owner: ") +
                                             userName(c.foreign ? stranger : me))
            << c.name;
    }
    EXPECT_EQ(File_Attributes(dir.filePath(QStringLiteral("gone.mp4"))), QString());
    EXPECT_EQ(File_TypeText(QStringLiteral("/x/notes.qqz")), QStringLiteral("QQZ File"));
}

// A probed clip without audio, the same clip hidden and read-only, and one deleted since its import.
TEST(FileProperties, ProbedClipsHiddenAndMissing) {
    QTemporaryDir dir;
    const QString clip = makeClip(dir, QStringLiteral("clip.mp4"));
    if (clip.isEmpty()) GTEST_SKIP() << "no ffmpeg program";
    const QString hidden = dir.filePath(QStringLiteral(".harbour.final.mp4"));
    const QString gone = dir.filePath(QStringLiteral("gone.mp4"));
    ASSERT_TRUE(QFile::copy(clip, hidden) && QFile::copy(clip, gone));
    const auto rw = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
    ASSERT_TRUE(QFile::setPermissions(clip, rw) && QFile::setPermissions(hidden, QFile::ReadOwner));
    FileViewMain table;
    probe(table, dir, {clip, hidden, gone});
    ASSERT_EQ(table.rows(), 3);
    ASSERT_TRUE(QFile::remove(gone));

    const FileProperties p = Read_Properties(table, 0);
    EXPECT_EQ(p.path, clip);
    const PropertyTexts& v = p.values;
    const QString owner = QStringLiteral(", Owner: ") + userName(::geteuid());
    // clang-format off
    const std::pair<int, QString> rows[] = {
        {Prop_Name, "clip"}, {Prop_Extension, "MP4"}, {Prop_Attributes, "Normal, rw-r--r--" + owner},
        {Prop_Duration, "00:00:01"}, {Prop_FrameSize, "160 x 120 pixels"}, {Prop_FrameRate, "25 frames/second"},
        {Prop_Aspect, "1.33:1 - (4:3)"}, {Prop_AudioCodec, NA}, {Prop_AudioBitRate, NA}, {Prop_SampleRate, NA},
        {Prop_Channels, NA}, {Prop_Title, "Harbour at dusk"}, {Prop_Year, "2024"}, {Prop_Comment, NA},
    };
    // clang-format on
    for (const auto& [entry, expected] : rows)
        EXPECT_EQ(v[entry], expected) << Property_Captions()[entry].toStdString();
    const PropertyTexts h = Read_Properties(table, 1).values;
    EXPECT_EQ(h[Prop_Name], QStringLiteral(".harbour.final"));
    EXPECT_EQ(h[Prop_Attributes], "Hidden, Read-only, r--------" + owner);
    EXPECT_NE(v[Prop_Type], NA);
    const QRegularExpressionMatch size =
        QRegularExpression(QStringLiteral("^[\\d.]+ (bytes|kB) \\(([\\d,]+) bytes\\)$")).match(v[Prop_Size]);
    ASSERT_TRUE(size.hasMatch()) << v[Prop_Size].toStdString();
    EXPECT_EQ(size.captured(2).remove(QLatin1Char(',')).toLongLong(), QFileInfo(clip).size());
    const QRegularExpression time(
        QStringLiteral("^[A-Z][a-z]+day, [A-Z][a-z]+ \\d\\d, \\d{4}, \\d\\d:\\d\\d:\\d\\d [AP]M$"));
    for (const int entry : {Prop_Accessed, Prop_Modified})
        EXPECT_TRUE(time.match(v[entry]).hasMatch()) << v[entry].toStdString();

    const FileProperties m = Read_Properties(table, 2);
    EXPECT_EQ(m.path, gone);
    for (int entry = Prop_Type; entry <= Prop_Attributes; ++entry)
        EXPECT_EQ(m.values[entry], NA) << entry;
    EXPECT_EQ(m.values[Prop_Name], QStringLiteral("gone"));
    EXPECT_EQ(m.values[Prop_FrameSize], QStringLiteral("160 x 120 pixels"));
}

TEST(PropertiesWindow, ShowsTheRowAndOpensItsLocation) {
    QTemporaryDir dir;
    const QString clip = makeClip(dir, QStringLiteral("clip.mp4"));
    if (clip.isEmpty()) GTEST_SKIP() << "no ffmpeg program";
    FileViewMain table;
    probe(table, dir, {clip});
    ASSERT_EQ(table.rows(), 1);
    QWidget owner;
    QStringList opened;
    bool seen = false;
    // The modal window as the list's menu opens it, read and closed from inside its event loop.
    QTimer::singleShot(0, [&] {
        auto* window = qobject_cast<frmProperties*>(QApplication::activeModalWidget());
        if (window == nullptr) return;
        seen = true;
        EXPECT_EQ(window->parentWidget(), &owner);
        EXPECT_EQ(window->Txt_FileName()->text(), clip);
        EXPECT_TRUE(window->Txt_FileName()->isReadOnly());
        EXPECT_FALSE(window->picPreview()->pixmap().isNull());
        EXPECT_EQ(window->TabControl1()->count(), 3);
        const PropertyTexts expected = Read_Properties(table, 0).values;
        for (int i = 0; i < Prop_Count; ++i) {
            EXPECT_EQ(window->lbl_Titles(i)->text(), Property_Captions()[i]);
            EXPECT_EQ(window->lbl_Infos(i)->text(), expected[i]) << i;
        }
        EXPECT_EQ(window->lbl_Infos(Prop_SampleRate)->text(), NA);
        window->Cmd_Properties(1)->click();
        window->Cmd_Properties(0)->click();
    });
    Show_Properties(&owner, table, 0, [&](const QString& path) { opened << path; });
    EXPECT_TRUE(seen);
    EXPECT_EQ(opened, QStringList{clip});

    // No row selected: nothing opens, so nothing waits.
    Show_Properties(&owner, table, -1);
}
