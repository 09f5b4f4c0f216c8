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
    struct Case {
        int state;
        bool empty;
        bool settings, convert;
    };
    // Outside state 0 the favorites change nothing; an empty panel leaves nothing to convert with.
    const Case cases[] = {
        {0, true, false, false}, {0, false, false, true}, {1, true, false, true}, {2, true, true, true}};
    for (const Case& c : cases) {
        const MainStateView v = Main_StateRule(c.state, true, {true, c.empty});
        EXPECT_EQ(v.buttons[Btn_Settings], c.settings) << c.state << c.empty;
        EXPECT_EQ(v.buttons[Btn_Convert], c.convert) << c.state << c.empty;
    }
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

TEST(CloseConversation, AsksPausesAndEndsAsChosen) {
    const QStringList terminate{QString::fromLatin1(kTerminateQuestion)};
    struct Case {
        const char* name;
        int state;    // of the queue when the close comes
        bool dontAsk; // remembered choice, with closeEvent
        int closeEvent;
        int dialogEvent; // the dialog's answer, with dialogDontAsk
        bool dialogDontAsk;
        int answer; // to the terminate question
        int shutdownAfter;
        int closes;
        bool closed;
        int dialogs, presses, endState, trays;
        bool asked;
        const char* storedEvent = nullptr; // nullptr: not checked
        const char* storedDontAsk = nullptr;
    };
    const Case cases[] = {
        {"converting, Escape on the dialog: refused, the queue runs on", 1, false, 0, 0, false, ID_NO, 0, 1,
         false, 1, 2, 1, 0, false},
        {"converting, tray remembered: no dialog, paused and resumed", 1, true, 1, 0, false, ID_NO, 0, 1,
         false, 0, 2, 1, 1, false},
        {"converting, exit chosen, No to the question: running again", 1, false, 0, 2, false, ID_NO, 0, 1,
         false, 1, 2, 1, 0, true},
        {"paused before the close, No: it runs afterwards", 2, true, 2, 0, false, ID_NO, 0, 1, false, 0, 1, 1,
         0, true},
        {"Yes ends the program with the queue left paused for the unload", 1, true, 2, 0, false, ID_YES, 0, 1,
         true, 0, 1, 2, 0, true},
        {"idle, asked: Exit closes and the settings are saved", 0, false, 0, 2, true, ID_NO, 0, 1, true, 1, 0,
         0, 0, false, "2", "-1"},
        {"idle, asked: Escape refuses, the next close asks again", 0, false, 0, 0, false, ID_NO, 0, 2, false,
         2, 0, 0, 0, false},
        {"idle, tray remembered: no dialog, refused, to the tray", 0, true, 1, 0, false, ID_NO, 0, 1, false,
         0, 0, 0, 1, false},
        {"after the queue's shutdown nothing is asked", 0, false, 0, 0, false, ID_NO, 1, 1, true, 0, 0, 0, 0,
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Close_DontAsk = c.dontAsk;
        Close_Event = c.closeEvent;
        CloseScene scene(c.state);
        scene.dialogEvent = c.dialogEvent;
        scene.dialogDontAsk = c.dialogDontAsk;
        scene.answer = c.answer;
        scene.shutdownAfter = c.shutdownAfter;
        for (int i = 0; i < c.closes; ++i)
            EXPECT_EQ(Form_QueryUnload(scene.seams()), c.closed);
        EXPECT_EQ(scene.dialogs, c.dialogs);
        EXPECT_EQ(scene.presses, c.presses);
        EXPECT_EQ(scene.state(), c.endState);
        EXPECT_EQ(scene.trays, c.trays);
        EXPECT_EQ(scene.questions, c.asked ? terminate : QStringList());
        if (c.storedEvent) {
            EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("CloseEvent")), c.storedEvent);
            EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("CloseDontAskMe")), c.storedDontAsk);
        }
    }
}
