// The update check: asks the update endpoint which versions exist and, if one is newer than the
// running version, offers it in frmUpdates. The request runs in the background on the main thread's
// event loop and ends with its reply or its time-out; no window waits on the network. Main thread
// only.
#pragma once

#include <QString>
#include <QUrl>

#include <functional>

class QDialog;
class QObject;
class QWidget;

namespace morvane {

// Result of the last finished check; the changes text is what frmUpdates shows.
inline bool UpdateFound = false;
inline QString UpdateMessage;
// Set when the user leaves for the update page, so that closing need not ask.
inline bool Update_Leaving = false;

constexpr int Update_TimeoutMs = 10000;

// "major.minor" of a version text ("2.10.3" gives "2.10"); a missing field counts as 0.
QString Update_RunningVersion(const QString& productVersion);

// The endpoint template: MORVANE_UPDATE_URL when set, else LINK_CHECKUPDATE.
QString Update_Template();

// The template with "PRODUCTNAME" and "VERSION" (in any case) replaced, and each blank as "%20".
QString Update_Url(const QString& linkTemplate, const QString& productName, const QString& version);

// The changes of every reply line newer than the running version, each line read as
// "version/change/change/..."; versions compare as decimal numbers, so 2.10 counts as 2.1.
QString Update_ParseReply(const QString& reply, const QString& version);

// True when the reply names a newer version; message gets the changes text ("" otherwise).
bool Update_Evaluate(const QString& reply, const QString& version, QString& message);

// Fetches the page and calls done with its text: the body of a successful reply, "" on any failure
// or once timeoutMs have passed. The request belongs to owner; if owner goes first, done never runs.
void Web_Fetch(const QUrl& url, int timeoutMs, QObject* owner, std::function<void(const QString&)> done);

// Starts a check against the endpoint for PRODUCT_NAME and PRODUCT_VERSION. When it ends,
// UpdateFound and UpdateMessage hold its result and done is called with UpdateFound.
void Update_Check(int timeoutMs, QObject* owner, std::function<void(bool found)> done);

enum class UpdateTrigger {
    Start, // only if Update_Active; frmUpdates if a newer version is found, else nothing
    Menu,  // frmUpdates if a newer version is found, else frmNoUpdates
};

// What a test puts in place of the modal run, the browser and the 10 s limit.
struct UpdateHooks {
    int timeoutMs = Update_TimeoutMs;
    std::function<void(QDialog&)> showModal;   // default: exec()
    std::function<void(const QUrl&)> openPage; // default: QDesktopServices::openUrl
};

// The one entry of the main window: starts a check and returns at once. The answer window comes up
// modally over `window` once the check ends, the window is visible and no other modal window is up.
// One check runs at a time: a Start while one runs is dropped, a Menu turns the running one into a
// Menu check. The check is owned by `window` and ends with it.
void Update_Run(QWidget* window, UpdateTrigger trigger, UpdateHooks hooks = {});

// A check has been started and its answer window has not yet closed.
bool Update_Running();

} // namespace morvane
