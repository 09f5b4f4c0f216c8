// The edit window's logic on a fake player: a row's columns read at opening and written back on OK,
// the edit mark, Cancel with and without saving, rows that cannot be edited, the player's buttons and
// the live preview.
#include "../playback/FakePlayer.h"
#include "EditVideo.h"
#include "FileViewMain.h"
#include "Globals.h"
#include "mMain.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

using namespace morvane;

namespace {

constexpr std::int64_t kClip = 10'000'000; // 10 s

// The cells of a row as the import leaves it: a 640 x 360 clip of 10 s, nothing edited.
std::map<int, QString> PlainRow(const QString& folder) {
    return {{FileCol::FileName, "clip.mp4"},
            {FileCol::FilePath, folder},
            {FileCol::VideoWidth, "640"},
            {FileCol::VideoHeight, "360"},
            {FileCol::VideoSampleAspectRatio, "1.78"},
            {FileCol::TrimStartLow, "0"},
            {FileCol::TrimStartHigh, "0"},
            {FileCol::TrimEndLow, "10000000"},
            {FileCol::TrimEndHigh, "0"},
            {FileCol::FileDurationLow, "10000000"},
            {FileCol::FileDurationHigh, "0"},
            {FileCol::Filters, ""},
            {FileCol::Deinterlacing, "1"},
            {FileCol::NewAspectRatio, "Original"},
            {FileCol::CropTop, "0"},
            {FileCol::CropBottom, "0"},
            {FileCol::CropLeft, "0"},
            {FileCol::CropRight, "0"},
            {FileCol::PadColor, "black"},
            {FileCol::SrcDuration, "10.00"}};
}

class EditVideoTest : public testing::Test {
protected:
    void SetUp() override {
        EditWindowOpen = true;
        Set_MessageHandler([this](const QString& text, int, const QString& title, const QString&) {
            messages << title + "|" + text;
            return answer;
        });
        media.LetEventsRun = [] {};
        ASSERT_TRUE(dir.isValid());
        QFile clip(dir.filePath("clip.mp4"));
        ASSERT_TRUE(clip.open(QIODevice::WriteOnly));
        fake.frame = QImage(64, 36, QImage::Format_RGB32);
        fake.frame.fill(QColor(200, 100, 50));
    }
    void TearDown() override {
        Set_MessageHandler({});
        EditWindowOpen = false;
    }
    int addRow(const std::map<int, QString>& changes = {}) {
        const int row = table.addRow();
        auto cells = PlainRow(dir.path() + "/");
        for (const auto& [column, text] : changes)
            cells[column] = text;
        for (const auto& [column, text] : cells)
            table.setText(row, column, text);
        return row;
    }
    // The window's opening as it runs it: load, activate, the first tick of its timer.
    std::unique_ptr<EditVideo> open(int row) {
        auto edit = std::make_unique<EditVideo>(table, media, row);
        edit->closeWindow = [this] { ++closes; };
        edit->Form_Load(QSize(320, 180));
        if (edit->Form_Activate()) edit->Timer_WaitToPlay_Tick();
        return edit;
    }
    std::map<int, QString> cells(int row) const {
        std::map<int, QString> c;
        for (int column = 0; column < FileCol::Count; ++column)
            c[column] = table.text(row, column);
        return c;
    }

    QTemporaryDir dir;
    FileViewMain table;
    FakePlayer fake;
    MediaPlayer media{fake};
    QStringList messages;
    int answer = ID_NO;
    int closes = 0;
};

} // namespace

TEST(EditColumns, TrimHalvesAndTheEditMark) {
    // Equal halves of start and end put the start's half to 0, each half on its own.
    EXPECT_EQ(Trim_Halves(2'000'000, 5'000'000), (std::array<std::int32_t, 4>{2'000'000, 0, 5'000'000, 0}));
    EXPECT_EQ(Trim_Halves(5'000'000, 5'000'000), (std::array<std::int32_t, 4>{0, 0, 5'000'000, 0}));
    const std::int64_t big = Time_FromPair(7, 1);
    EXPECT_EQ(Trim_Halves(Time_FromPair(7, 0), big), (std::array<std::int32_t, 4>{0, 0, 7, 1}));

    const EditColumns plain{0, kClip, {}, 0, 0, 0, 0, "", true, kAspectOriginal, "Original"};
    EXPECT_FALSE(Is_Edited(plain, Time_Low(kClip), Time_High(kClip)));
    // Pads alone come from the aspect's drawing and mark nothing; everything else does.
    EditColumns padded = plain;
    padded.PadLeft = padded.PadRight = 40;
    EXPECT_FALSE(Is_Edited(padded, Time_Low(kClip), 0));
    const std::function<void(EditColumns&)> changes[] = {
        [](EditColumns& v) { v.Deinterlace = false; },  [](EditColumns& v) { v.TrimStart = 1; },
        [](EditColumns& v) { v.TrimEnd = kClip - 1; },  [](EditColumns& v) { v.Crop.Bottom = 2; },
        [](EditColumns& v) { v.Effects = "Sepia:1,"; }, [](EditColumns& v) { v.AspectMode = kAspectPanScan; },
    };
    for (const auto& change : changes) {
        EditColumns v = plain;
        change(v);
        EXPECT_TRUE(Is_Edited(v, Time_Low(kClip), 0));
    }
    EditColumns blank = plain;
    blank.Effects = "  ";
    EXPECT_FALSE(Is_Edited(blank, Time_Low(kClip), 0));
}

TEST_F(EditVideoTest, OkWithoutChangesWritesTheColumnsAndNoMark) {
    const int row = addRow();
    auto edit = open(row);
    ASSERT_TRUE(edit->Activated) << messages.join('\n').toStdString();
    EXPECT_FALSE(edit->Dirty());
    EXPECT_EQ(edit->Txt_CropOriginalSize, "640 x 360");
    EXPECT_EQ(edit->FilePath, dir.filePath("clip.mp4"));
    const auto before = cells(row);
    edit->Cmd_Panels_Click(0);
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(table.editMark(row), 0);
    auto after = cells(row);
    // What a plain save adds: the pads of the "Original" frame (none), the crop's size, the length.
    for (int column :
         {int(FileCol::PadTop), int(FileCol::PadBottom), int(FileCol::PadLeft), int(FileCol::PadRight)})
        EXPECT_EQ(after[column], "0");
    EXPECT_EQ(after[FileCol::CropWidth], "640");
    EXPECT_EQ(after[FileCol::CropHeight], "360");
    EXPECT_EQ(after[FileCol::Duration], "00:00:10");
    for (int column = FileCol::TrimStartLow; column <= FileCol::NewAspectRatio; ++column) {
        const bool added = column == FileCol::CropWidth || column == FileCol::CropHeight ||
                           (column >= FileCol::PadTop && column <= FileCol::PadRight);
        if (!added) {
            EXPECT_EQ(after[column], before.at(column)) << column;
        }
    }
}

TEST_F(EditVideoTest, EditedValuesRoundTripThroughTheColumns) {
    const int row = addRow({{FileCol::TrimStartLow, "2000000"},
                            {FileCol::TrimEndLow, "5000000"},
                            {FileCol::CropTop, "40"},
                            {FileCol::CropBottom, "40"},
                            {FileCol::CropLeft, "80"},
                            {FileCol::CropRight, "80"},
                            {FileCol::Filters, "Brightness:-40,Mosaic:5,"},
                            {FileCol::Deinterlacing, "0"},
                            {FileCol::NewAspectRatio, "PanScan"}});
    auto edit = open(row);
    ASSERT_TRUE(edit->Activated);
    EXPECT_EQ(edit->trim.TrimStart, 2'000'000);
    EXPECT_EQ(edit->trim.TrimEnd, 5'000'000);
    EXPECT_EQ(edit->trim.lbl_SelectedTimeTag, "3.00");
    EXPECT_EQ(edit->effects.Slider_Adjust[0], -40);
    EXPECT_EQ(edit->Chk_Deinterlace, 0);
    EXPECT_EQ(edit->Switch_DeinterlaceImage, "img_switch_off");
    EXPECT_EQ(edit->crop.AspectMode, kAspectPanScan);
    // 640 x 360 shown at 320 x 180: the margins halve on the way in and double on the way out.
    EXPECT_EQ(edit->crop.Crop_Canves, QRect(40, 20, 240, 140));
    EXPECT_FALSE(edit->Dirty()) << "restoring is no change";

    // A frame drawn as "PanScan" into the 16:9 frame: the 480 x 280 cut, narrower than 16:9, grows to
    // the frame's width and loses some of its top and bottom.
    fake.state = PlayerState_Playing;
    fake.frame = QImage(640, 360, QImage::Format_RGB32);
    edit->Timer_GetPreview_Tick();
    ASSERT_FALSE(edit->Pic_Preview[0].isNull());
    EXPECT_EQ(edit->Pic_Preview[0].size(), QSize(320, 180));
    EXPECT_LT(edit->crop.PadTop, 0);
    EXPECT_EQ(edit->crop.PadLeft, 0);

    edit->Cmd_Panels_Click(0);
    const auto after = cells(row);
    EXPECT_EQ(table.editMark(row), kEditMarkImage);
    EXPECT_EQ(after.at(FileCol::TrimStartLow), "2000000");
    EXPECT_EQ(after.at(FileCol::TrimEndLow), "5000000");
    EXPECT_EQ(after.at(FileCol::SrcDuration), "3.00");
    EXPECT_EQ(after.at(FileCol::Duration), "00:00:03");
    EXPECT_EQ(after.at(FileCol::CropTop) + after.at(FileCol::CropLeft), "4080");
    EXPECT_EQ(after.at(FileCol::CropWidth) + "x" + after.at(FileCol::CropHeight), "480x280");
    EXPECT_EQ(after.at(FileCol::Filters), "Brightness:-40,Mosaic:5,");
    EXPECT_EQ(after.at(FileCol::Deinterlacing), "0");
    EXPECT_EQ(after.at(FileCol::NewAspectRatio), "PanScan");
    EXPECT_EQ(after.at(FileCol::PadTop), QString::number(edit->crop.PadTop));
    EXPECT_EQ(after.at(FileCol::PadColor), "black");
}

TEST_F(EditVideoTest, DeinterlaceOffAloneMarksTheRowAndResetClearsIt) {
    const int row = addRow();
    auto edit = open(row);
    edit->Chk_Deinterlace_Click(0);
    EXPECT_TRUE(edit->Dirty());
    edit->Save_EditValues();
    EXPECT_EQ(table.editMark(row), kEditMarkImage);
    EXPECT_EQ(table.text(row, FileCol::Deinterlacing), "0");
    edit->Cmd_Reset_Click(1); // the crop tab's reset turns the switch back on
    EXPECT_EQ(edit->Chk_Deinterlace, 1);
    edit->Cmd_ApplyToAll_Click();
    edit->Save_EditValues();
    EXPECT_EQ(table.editMark(row), 0);
}

TEST_F(EditVideoTest, CancelAsksOnlyAfterAChangeAndSavesOnlyOnYes) {
    struct Case {
        bool change;
        int answer;
        int questions;
        bool saved;
    };
    for (const Case c :
         {Case{false, ID_YES, 0, false}, Case{true, ID_NO, 1, false}, Case{true, ID_YES, 1, true}}) {
        messages.clear();
        answer = c.answer;
        const int row = addRow();
        auto edit = open(row);
        if (c.change) edit->effects.Cmd_Adjust_Click(0); // FlipV
        const auto before = cells(row);
        edit->Cmd_Panels_Click(1);
        EXPECT_EQ(messages.filter("Do you want to save changes?").size(), c.questions);
        EXPECT_EQ(table.text(row, FileCol::Filters) == "FlipV,", c.saved);
        if (!c.saved) {
            EXPECT_EQ(cells(row), before);
        }
        EXPECT_FALSE(edit->Dirty());
        // Closing after Cancel asks nothing more.
        edit->Form_QueryUnload();
        EXPECT_EQ(messages.filter("Do you want to save changes?").size(), c.questions);
    }
}

TEST_F(EditVideoTest, RowsThatCannotBeEditedSaySoAndWriteNothing) {
    const std::map<int, QString> rows[] = {
        {{FileCol::FileDurationLow, "0"}},          // no length
        {{FileCol::FileDurationLow, "400000"}},     // under half a second: no whole second to trim
        {{FileCol::FileDurationLow, "x"}},          // no number
        {{FileCol::Filters, "Brightness:bright,"}}, // a value the slider cannot take
    };
    for (const auto& changes : rows) {
        messages.clear();
        closes = 0;
        const int row = addRow(changes);
        const auto before = cells(row);
        auto edit = open(row);
        EXPECT_FALSE(edit->Activated);
        EXPECT_EQ(messages, QStringList{"Sorry!|" + dir.filePath("clip.mp4") + " is not editable!"});
        EXPECT_EQ(closes, 1);
        edit->Form_QueryUnload();
        EXPECT_EQ(cells(row), before);
        EXPECT_EQ(table.editMark(row), 0);
    }
}

TEST_F(EditVideoTest, PlayerButtonsPreviewAndClosing) {
    const int row = addRow();
    auto edit = open(row);
    // Opening plays the selection: the stopped player opens the file at the start handle.
    EXPECT_TRUE(fake.calls.contains(QString("open %1 0").arg(dir.filePath("clip.mp4"))))
        << fake.calls.join(',').toStdString();
    edit->Cmd_Player_Click(1);
    EXPECT_FALSE(edit->playControlsEnabled);
    EXPECT_FALSE(edit->timers.GetPreview);
    edit->Timer_GetPreview_Tick(); // stopped: no frame, nothing drawn
    EXPECT_TRUE(edit->Pic_Preview[0].isNull());

    edit->Cmd_Player_Click(0);
    EXPECT_TRUE(edit->playControlsEnabled);
    EXPECT_TRUE(edit->timers.GetPreview);
    edit->Cmd_Tab_Click(3);
    edit->effects.SetAdjust(0, 255); // the live picture shows the adjustment
    edit->Timer_GetPreview_Tick();
    ASSERT_FALSE(edit->Pic_Preview[3].isNull());
    const QColor centre = edit->Pic_Preview[3].pixelColor(160, 90);
    EXPECT_GT(centre.green(), 200) << "brightened from 100";
    edit->Cmd_Tab_Click(1);
    EXPECT_TRUE(edit->timers.GetCropInfo);
    EXPECT_EQ(edit->cropInfo.lbl_Buttom, "Buttom : 0");

    edit->Slider_MPVolume_Change(0);
    edit->Cmd_Player_Click(2); // unmuting at 0 raises the volume
    EXPECT_EQ(edit->buttons.volume, edit->buttons.volumeMax);
    edit->Cmd_Player_Click(2);
    EXPECT_TRUE(fake.mute);

    // The end of the stream stops this window's player; closing gives the player back unmuted.
    media.State(PlayerState_EndOfStream);
    EXPECT_EQ(edit->buttons.playTag, "Play");
    edit->Form_QueryUnload();
    EXPECT_FALSE(EditWindowOpen);
    EXPECT_FALSE(fake.mute);
    EXPECT_EQ(fake.volume, 100);
    EXPECT_EQ(fake.state, PlayerState_Stopped);
    EXPECT_EQ(media.PlayerOwnerForm, nullptr);
}

TEST_F(EditVideoTest, AMissingFileSaysSoWhenPlayed) {
    const int row = addRow({{FileCol::FileName, "gone.mp4"}});
    auto edit = open(row);
    EXPECT_TRUE(edit->Activated);
    messages.clear();
    edit->Cmd_Player_Click(0);
    EXPECT_EQ(messages, QStringList{"Player|" + dir.filePath("gone.mp4") + "\nFile not found!"});
    EXPECT_FALSE(edit->playControlsEnabled);
}
