// The main window's state rule: which controls a state enables. Pure data, so that the rule is
// tested without a window and the window only applies the result.
#pragma once

#include <array>
#include <optional>

namespace morvane {

enum MainStateNo : int { MainState_Ready = 0, MainState_Converting = 1, MainState_Empty = 2 };

// Indexes of the button array Cmd_FileListView.
enum FileListButton : int {
    Btn_Add = 0,
    Btn_Remove = 1,
    Btn_RemoveAll = 2,
    Btn_Convert = 3,
    Btn_Stop = 4,
    Btn_OpenOutput = 5,
    Btn_Settings = 6,
    Btn_BrowseOutput = 7,
    Btn_Edit = 8,
    Btn_Favorite = 10,
    Btn_Search = 12,
    Btn_Disc = 13,
    Btn_Rename = 14,
    Btn_Count = 15
};

// What the rule needs to know of the browser beyond the state.
struct MainStateContext {
    bool favoritesPanelOpen = false;
    bool favoritesEmpty = false;
};

// What Set_MainState sets. An empty optional leaves the control as it is.
struct MainStateView {
    bool menuGroup = true; // mnuMenu entries 1, 6, 7, 13
    bool dragDropVisible = false;
    std::optional<bool> listChromeVisible; // the list's header and scroll bars
    std::array<std::optional<bool>, Btn_Count> buttons{};
    std::optional<bool> groupA; // the browser, Txt_OutputPath, Chk_Merge
    std::optional<bool> groupB; // the preset settings' lists, boxes and quality
    bool makerNames = true;
    bool fileView = true;
    bool progressTotal = true;
};

MainStateView Main_StateRule(int state, bool enable, const MainStateContext& context);

} // namespace morvane
