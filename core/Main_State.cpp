#include "Main_State.h"

namespace morvane {

MainStateView Main_StateRule(int state, bool enable, const MainStateContext& context) {
    MainStateView v;
    const bool converting = state == MainState_Converting;
    const bool empty = state == MainState_Empty;

    v.menuGroup = !converting;
    v.dragDropVisible = !converting && !enable;

    // Every button of the array first; the rows below override single buttons.
    for (std::size_t i = 0; i < v.buttons.size(); ++i)
        if (i != 9 && i != 11) v.buttons[i] = converting ? false : enable;
    v.buttons[Btn_Convert] = converting ? true : enable;
    v.buttons[Btn_Stop] = converting ? true : (empty ? enable : false);
    for (int i :
         {Btn_Add, Btn_OpenOutput, Btn_Settings, Btn_BrowseOutput, Btn_Favorite, Btn_Search, Btn_Disc})
        v.buttons[i] = converting ? false : (empty ? true : enable);

    if (!empty) {
        v.groupA = converting ? false : enable;
        v.groupB = v.groupA;
    }
    v.makerNames = converting ? false : (empty ? true : enable);
    v.fileView = state == MainState_Ready ? enable : true;
    v.progressTotal = state == MainState_Ready ? enable : true;

    if (state == MainState_Ready) {
        v.listChromeVisible = !v.dragDropVisible;
        if (context.favoritesPanelOpen) {
            v.buttons[Btn_Settings] = false;
            if (context.favoritesEmpty) v.buttons[Btn_Convert] = false;
        }
    }
    return v;
}

} // namespace morvane
