#include "Close_Main.h"

#include "Registry_Mod.h"
#include "mMain.h"

namespace morvane {

namespace {

void call(const std::function<void()>& f) {
    if (f) f();
}

bool closeWhileConverting(const CloseSeams& s) {
    if (s.conversionState() == 1) call(s.pressConvert); // paused while the user decides
    if (!Close_DontAsk) {
        call(s.showCloseDialog);
        Save_Settings();
        call(s.letMessagesThrough);
    }
    const auto resumeIfPaused = [&] {
        if (s.conversionState() == 2) call(s.pressConvert);
    };
    switch (Close_Event) {
    case 1:
        resumeIfPaused();
        call(s.goToTray);
        return false;
    case 2:
        if (Show_Message(QString::fromLatin1(kTerminateQuestion), MB_YESNO | MB_ICONQUESTION, QString()) ==
            ID_YES)
            return true;
        resumeIfPaused();
        return false;
    default: // the dialog was cancelled
        resumeIfPaused();
        return false;
    }
}

} // namespace

bool Form_QueryUnload(const CloseSeams& s) {
    if (s.conversionState && s.conversionState() != 0) return closeWhileConverting(s);

    if (s.shutdownAfter == 1) {
        Save_Settings();
        call(s.letMessagesThrough);
        return true;
    }
    if (!Close_DontAsk) call(s.showCloseDialog);
    Save_Settings();
    call(s.letMessagesThrough);
    switch (Close_Event) {
    case 1:
        call(s.goToTray);
        return false;
    case 2:
        return true;
    default:
        return false;
    }
}

} // namespace morvane
