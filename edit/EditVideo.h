// The edit window's logic apart from its widgets: one list row's trim, crop, pad, aspect, effects,
// adjustments and deinterlace switch, read from the row's columns when the window opens, shown live
// on the player's frames, and written back on OK. The window shows this state and the state of the
// three tab models, forwards its events here, and turns the timer flags into real timers, so that
// tests tick them by hand. Main thread only.
//
// Values are written to the row only by Save_EditValues; Cancel and a refused opening leave every
// column as it was.
#pragma once

#include "Crop_Mods.h"
#include "EffectsPanel.h"
#include "MediaPlayer_Mod.h"
#include "Trim_Mods.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

#include <array>
#include <cstdint>
#include <functional>

namespace morvane {

class FileViewMain;

// The state image of column 3 of an edited row.
inline constexpr int kEditMarkImage = 14;

// The values of the edit columns as Save_EditValues writes them.
struct EditColumns {
    std::int64_t TrimStart = 0, TrimEnd = 0;
    StoredCrop Crop;
    std::int32_t PadTop = 0, PadBottom = 0, PadLeft = 0, PadRight = 0;
    QString Effects;
    bool Deinterlace = true;
    std::int32_t AspectMode = kAspectOriginal;
    QString AspectText = QStringLiteral("Original");
};

// The trim halves as stored: a start half equal to the end's same half is stored as 0, half by half, so
// two equal points fall back to the clip's beginning.
std::array<std::int32_t, 4> Trim_Halves(std::int64_t trimStart, std::int64_t trimEnd);

// A row counts as edited unless no crop, no trim (start at 0, end at the clip's length), no effects,
// deinterlace on and the "Original" aspect all hold.
bool Is_Edited(const EditColumns& values, std::int32_t clipLow, std::int32_t clipHigh);

class EditVideo {
public:
    static constexpr int kTabs = 4; // 0 Trim, 1 Crop, 2 Effect, 3 Adjust

    EditVideo(FileViewMain& table, MediaPlayer& media, int row);
    ~EditVideo();
    EditVideo(const EditVideo&) = delete;
    EditVideo& operator=(const EditVideo&) = delete;

    // ---- The tabs' own models.
    TrimBar trim;
    CropFrame crop;
    EffectsPanel effects;

    // ---- The window's state.
    const int Info_Row;
    int CurrentTab = 0;
    bool Activated = false;
    QString FilePath;
    std::int32_t SourceWidth = 0, SourceHeight = 0;
    float SourceAspect = 0; // item column 20, the player's aspect
    QString Txt_CropOriginalSize;
    int Chk_Deinterlace = 1;
    QString Switch_DeinterlaceImage = QStringLiteral("img_switch_on");
    PlayerButtons buttons;
    PlayPanel panel;                  // the player's labels; its bar is the trim bar
    bool playControlsEnabled = false; // the bar, both handles, Cmd_Trim 0 and 1, Cmd_Player 1
    CropInfo cropInfo;
    // The player's frame as the output will show it, for each tab; null until a frame is drawn.
    std::array<QImage, kTabs> Pic_Preview;
    QImage Pic_CaptureTmp; // the last frame as the player gave it: the crop tab draws its rectangle on it
    QSize previewSize;     // picPreview's scale size: the crop rectangle's bounds
    QRect outputShape;     // the output frame's 16:9 shape inside the preview area
    QRect previewFrame;    // Pic_PreviewFrame: where the drawn output sits in the preview area

    struct Timers {
        bool WaitToPlay = false;
        bool GetPreview = false;
        bool GetCropInfo = false;
    } timers; // Timer_PlaySelected is trim.Timer_PlaySelected

    // ---- What the window does for the logic. Empty members do nothing.
    std::function<void()> closeWindow;
    std::function<void()> activateMain;
    std::function<void()> changed;
    // Only the picture, the play position and the time labels moved: what the player's events and
    // the preview timer bring many times a second, too often to show everything again.
    std::function<void()> pictureChanged;

    // Any user change since the last save or the end of the opening.
    bool Dirty() const;
    void Clear_Dirty();
    void Set_Dirty() { m_dirty = true; }

    // ---- Opening: Form_Load with the size of the preview's area, then Form_Activate (false when the
    // row cannot be edited: the message is shown and the window asked to close), then the timer.
    void Form_Load(QSize previewArea);
    bool Form_Activate();
    void Timer_WaitToPlay_Tick();

    void Cmd_Tab_Click(int index);
    // 0 OK, 1 Cancel.
    void Cmd_Panels_Click(int index);
    void Save_EditValues();
    // The window asks to close: offers to save a change, then unloads.
    void Form_QueryUnload();
    void Form_Unload();

    // ---- Player, switches, streams, resets.
    void Cmd_Player_Click(int index); // 0 Play and Pause, 1 Stop, 2 Mute
    void Slider_MPVolume_Change(int value);
    void EditWindow_StopPlayer() { Cmd_Player_Click(1); }
    void Chk_Deinterlace_Click(int value);
    void Combo_AudioSubTitle_Click(int combo, const QString& text);
    void Cmd_Reset_Click(int index); // 0 trim, 1 crop, 2 adjust, 3 the effect's first slider
    void Cmd_ApplyToAll_Click() {}   // there to see, with no action
    void Cmd_AspectRatio_Click(int index);

    // ---- Timers.
    void Timer_GetPreview_Tick();
    void Timer_GetCropInfo_Tick();

    // The preview's area changed its size: the picture, the crop bounds and the output frame follow.
    void Layout_Preview(QSize previewArea);

    // The values the window would save now.
    EditColumns Current_Values() const;

private:
    PlayerOptions options() const;
    // Cmd_Player 0 with the file opened at `position` when nothing plays.
    bool playFrom(std::int64_t position);
    void notify();
    void notifyPicture();
    void setDeinterlace(int value);
    void clearPreviews();
    TrimHost trimHost();

    FileViewMain& m_table;
    MediaPlayer& m_media;
    QSize m_previewArea;
    bool m_dirty = false;
    bool m_unloaded = false;
    std::uint32_t m_frameSeed = 0;
};

// picPreview inside its area: the picture's shape, centred. Empty for a picture without size.
QRect Fit_Preview(QSize area, std::int32_t width, std::int32_t height);

} // namespace morvane
