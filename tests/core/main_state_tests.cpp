#include "TempHome.h"

#include "Close_Main.h"
#include "Globals.h"
#include "Main_State.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

// One row of the state table: what a state and flag give for the controls that the rule names.
struct Expect {
    int state;
    bool enable;
    bool menu, dragDrop, add, remove, convert, stop, settings, maker, fileView, progress;
    int groups; // -1 untouched, 0 off, 1 on
};

} // namespace

TEST(MainStateRule, EachStateAndFlagAsTheTableSays) {
    const Expect table[] = {
        // state enable  menu   drag   add    remove convert stop  settings maker  view   bar    groups
        {0, true, true, false, true, true, true, false, true, true, true, true, 1},
        {0, false, true, true, false, false, false, false, false, false, false, false, 0},
        {1, true, false, false, false, false, true, true, false, false, true, true, 0},
        {1, false, false, false, false, false, true, true, false, false, true, true, 0},
        {2, true, true, false, true, true, true, true, true, true, true, true, -1},
        {2, false, true, true, true, false, false, false, true, true, true, true, -1},
    };
    for (const Expect& e : table) {
        SCOPED_TRACE(testing::Message() << "state " << e.state << " enable " << e.enable);
        const MainStateView v = Main_StateRule(e.state, e.enable, {});
        EXPECT_EQ(v.menuGroup, e.menu);
        EXPECT_EQ(v.dragDropVisible, e.dragDrop);
        EXPECT_EQ(v.buttons[Btn_Add], e.add);
        EXPECT_EQ(v.buttons[Btn_Remove], e.remove);
        EXPECT_EQ(v.buttons[Btn_RemoveAll], e.remove);
        EXPECT_EQ(v.buttons[Btn_Edit], e.remove);
        EXPECT_EQ(v.buttons[Btn_Convert], e.convert);
        EXPECT_EQ(v.buttons[Btn_Stop], e.stop);
        for (int b : {Btn_OpenOutput, Btn_Settings, Btn_BrowseOutput, Btn_Favorite, Btn_Search, Btn_Disc})
            EXPECT_EQ(v.buttons[b], e.settings) << "button " << b;
        EXPECT_FALSE(v.buttons[9].has_value());
        EXPECT_FALSE(v.buttons[11].has_value());
        EXPECT_EQ(v.makerNames, e.maker);
        EXPECT_EQ(v.fileView, e.fileView);
        EXPECT_EQ(v.progressTotal, e.progress);
        if (e.groups < 0) {
            EXPECT_FALSE(v.groupA.has_value());
            EXPECT_FALSE(v.groupB.has_value());
        } else {
            EXPECT_EQ(v.groupA, e.groups == 1);
            EXPECT_EQ(v.groupB, e.groups == 1);
        }
        // Only state 0 touches the list's header and scroll bars: shown exactly when the hint is not.
        if (e.state == 0)
            EXPECT_EQ(v.listChromeVisible, !e.dragDrop);
        else
            EXPECT_FALSE(v.listChromeVisible.has_value());
    }
}

TEST(MainStateRule, FavoritesPanelTurnsOffSettingsAndAnEmptyOneTheConvertButton) {
    MainStateView v = Main_StateRule(0, true, {true, true});
    EXPECT_EQ(v.buttons[Btn_Settings], false);
    EXPECT_EQ(v.buttons[Btn_Convert], false); // files in the list, yet nothing to convert with
    v = Main_StateRule(0, true, {true, false});
    EXPECT_EQ(v.buttons[Btn_Settings], false);
    EXPECT_EQ(v.buttons[Btn_Convert], true);
    // Outside state 0 the favorites change nothing.
    v = Main_StateRule(1, true, {true, true});
    EXPECT_EQ(v.buttons[Btn_Convert], true);
    v = Main_StateRule(2, true, {true, true});
    EXPECT_EQ(v.buttons[Btn_Settings], true);
}

namespace {

// A queue and the dialogs the conversation may show, recording what happened.
class CloseScene {
public:
    explicit CloseScene(int state) : m_state(state) {
        REGISTRY_PRODUCT = QStringLiteral("morvane-test/close");
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            questions << text;
            return answer;
        });
    }
    ~CloseScene() { Set_MessageHandler(nullptr); }

    CloseSeams seams() {
        CloseSeams s;
        s.conversionState = [this] { return m_state; };
        s.pressConvert = [this] {
            presses++;
            m_state = m_state == 1 ? 2 : 1;
        };
        s.showCloseDialog = [this] {
            dialogs++;
            Close_Event = dialogEvent;
            Close_DontAsk = dialogDontAsk;
        };
        s.goToTray = [this] { trays++; };
        s.letMessagesThrough = [] {};
        s.shutdownAfter = shutdownAfter;
        return s;
    }
    int state() const { return m_state; }

    int dialogEvent = 0;
    bool dialogDontAsk = false;
    int answer = ID_NO;
    int shutdownAfter = 0;
    int presses = 0, dialogs = 0, trays = 0;
    QStringList questions;

private:
    int m_state;
    TempHome m_home;
};

} // namespace

TEST(CloseConversation, WhileConverting) {
    const QString question = QString::fromLatin1(kTerminateQuestion);
    {
        SCOPED_TRACE("always ask, Escape on the dialog: refused, the queue runs on");
        Close_DontAsk = false;
        CloseScene scene(1);
        scene.dialogEvent = 0;
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 1);
        EXPECT_EQ(scene.presses, 2);
        EXPECT_EQ(scene.state(), 1);
        EXPECT_TRUE(scene.questions.isEmpty());
    }
    {
        SCOPED_TRACE("don't ask, event 1: no dialog, paused and resumed, to the tray");
        Close_DontAsk = true;
        Close_Event = 1;
        CloseScene scene(1);
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 0);
        EXPECT_EQ(scene.presses, 2);
        EXPECT_EQ(scene.state(), 1);
        EXPECT_EQ(scene.trays, 1);
    }
    {
        SCOPED_TRACE("exit chosen, No to the question: running again");
        Close_DontAsk = false;
        CloseScene scene(1);
        scene.dialogEvent = 2;
        scene.dialogDontAsk = false;
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.questions, QStringList{question});
        EXPECT_EQ(scene.state(), 1);
    }
    {
        SCOPED_TRACE("paused before the close, No: it runs afterwards");
        Close_DontAsk = true;
        Close_Event = 2;
        CloseScene scene(2);
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.presses, 1);
        EXPECT_EQ(scene.state(), 1);
    }
    {
        SCOPED_TRACE("Yes ends the program with the queue left paused for the unload");
        Close_DontAsk = true;
        Close_Event = 2;
        CloseScene scene(1);
        scene.answer = ID_YES;
        EXPECT_TRUE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.state(), 2);
        EXPECT_EQ(scene.trays, 0);
    }
}

TEST(CloseConversation, WithNothingRunning) {
    {
        SCOPED_TRACE("asked: Exit closes and the settings are saved");
        Close_DontAsk = false;
        CloseScene scene(0);
        scene.dialogEvent = 2;
        scene.dialogDontAsk = true;
        EXPECT_TRUE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 1);
        EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("CloseEvent")), QStringLiteral("2"));
        EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("CloseDontAskMe")), QStringLiteral("-1"));
        EXPECT_EQ(scene.presses, 0);
    }
    {
        SCOPED_TRACE("asked: Escape refuses, the next close asks again");
        Close_DontAsk = false;
        CloseScene scene(0);
        scene.dialogEvent = 0;
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 2);
    }
    {
        SCOPED_TRACE("tray remembered: no dialog, refused, to the tray");
        Close_DontAsk = true;
        Close_Event = 1;
        CloseScene scene(0);
        EXPECT_FALSE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 0);
        EXPECT_EQ(scene.trays, 1);
    }
    {
        SCOPED_TRACE("after the queue's shutdown nothing is asked");
        Close_DontAsk = false;
        Close_Event = 0;
        CloseScene scene(0);
        scene.shutdownAfter = 1;
        EXPECT_TRUE(Form_QueryUnload(scene.seams()));
        EXPECT_EQ(scene.dialogs, 0);
    }
}
