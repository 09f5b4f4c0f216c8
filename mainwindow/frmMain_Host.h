// What the import and the conversion controller ask of the main window: its state, the information
// panel, the wait window, the preview picture and the end-of-queue windows.
#pragma once

#include "Command_Load.h"
#include "DragDrop_Mod.h"
#include "Import_Files.h"
#include "Library_List.h"
#include "VideoConverter_Mods.h"
#include "frmMain.h"

namespace morvane {

class frmMain::Host : public ConversionHost,
                      public DropHost,
                      public CommandHost,
                      public FileDialog,
                      public DiscFolderDialog {
public:
    explicit Host(frmMain& window) : w(window) {}

    // ---- Both.
    void Show_InputFileInfo(int row) override { w.Show_InputFileInfo(row); }

    // ---- ConversionHost.
    void Set_MainState(int state, bool enable) override { w.Set_MainState(state, enable); }
    void Set_AcceptDrops(bool accept) override { w.setAcceptDrops(accept); }
    void Focus_OutputPath() override;
    void Show_OutputPath(const QString& folder) override;
    void Focus_List() override;
    void Scroll_ToRow(int row) override;
    void Clear_Preview() override;
    void Show_PreviewBitmap(int width, int height, const QByteArray& bgra) override;
    void Wait_Show(int maximum, const QString& caption) override;
    void Wait_Step(const QString& countText, int value) override;
    void Wait_Close() override;
    int Window_State() override;
    void Set_WindowState(int state) override;
    void Show_Completion() override;
    bool Tray_Animating() override { return w.m_tray.Timer_TrayIcon; }
    void Tray_StopAnimation() override;
    void Restore_FromTray() override;
    void Tray_SetTip(const QString& tip) override;
    void Tray_SetDoneIcon() override;
    void Show_Popup(int animateDelay, int showDelay, int transparency) override {
        Show_DonePopup(*w.m_donePopup, animateDelay, showDelay, transparency);
    }
    void Run_Shutdown(const QString& command) override;
    void Unload_Main() override;

    // ---- ImportHost.
    void Set_MainEnabled(bool enabled) override { w.setEnabled(enabled); }
    void Set_MainState(int state) override;
    void Refresh_Main() override { w.update(); }
    void Wait_Show(int maximum) override;
    void Wait_Step(const QString& fileNo, const QString& file, int value) override;

    // ---- DropHost.
    bool Is_Converting() override;
    void Set_DropHintVisible(bool visible) override;

    // ---- CommandHost: what the command channel asks of the window.
    int Get_ConversionState() override;
    // A modal window (the edit and player windows among them) holds the main one as a disabled window
    // would be held: orders then are dropped.
    bool Main_Enabled() override;
    QList<PresetRow> Preset_Rows() override;
    bool Preset_Select(const QString& name, const QString& maker, const QString& keyword) override;
    void Import_File(const QString& path) override;
    void Remove_All() override;
    void Update_Totals() override;
    int Row_Count() override;
    void Select_FirstRow() override;
    void Focus_Table() override { Focus_List(); }
    quint64 Main_WindowHandle() override { return static_cast<quint64>(w.winId()); }
    quint64 Active_WindowHandle() override;
    void Hide_DragDrop() override { Set_DropHintVisible(false); }
    void Show_TagPopup(const QString& imagePath, const QString& showDelay, const QString& animateDelay,
                       const QString& effect) override {
        morvane::Show_TagPopup(*w.m_tagPopup, imagePath, showDelay, animateDelay, effect);
    }

    // ---- FileDialog: the Add dialog; DiscFolderDialog: "Load DVD Folder...".
    QStringList Show_Open(const OpenDialogRequest& request) override;
    QString Browse_Folder(const QString& startFolder) override;

    // The merge's wait window ("Finalizing Progress...").
    void Merge_Wait(bool show);

private:
    void openWait(int mode);
    frmMain& w;
};

} // namespace morvane
