// Process-wide values that the start sequence sets once and every subsystem reads. Main thread only;
// read-only after start except where a comment says otherwise.
#pragma once

#include <QString>

#include <cstdint>

namespace morvane {

inline QString COMPANY_NAME;
inline QString PRODUCT_NAME;
inline QString PRODUCT_VERSION;
inline QString PRODUCT_ID;
inline QString REGISTRY_PRODUCT; // settings path below the user's configuration folder
inline QString LINK_HOMEPAGE1;
inline QString LINK_CHECKUPDATE;
inline QString LINK_CONTACT_US;
inline QString LINK_SEND_REPORT;
inline std::int32_t FAVORITE_MAX = 0;

inline QString Folder_Data;
inline QString Folder_Temp;
inline QString Folder_Preset;
inline QString Folder_UserPreset;
inline QString Folder_UserFavorite;
inline QString File_UserPreset;
inline QString File_UserFavorite;
inline QString File_AnalyzerReports;
inline QString Folder_Libs;

inline QString Path_Input;    // rewritten when the user picks files
inline QString Path_LastDisc; // rewritten by the disc source
inline QString Path_Output;   // rewritten when the user picks the output folder
inline QString Path_Capture;  // rewritten when the user saves a snapshot

// Flags of other windows that the encoder's and the player's event handlers honour (edit window,
// player window, closing, the diagnostics test run). Set by their owners.
inline bool EditWindowOpen = false;
inline bool PlayerWindowOpen = false;
inline bool Closing = false;
inline bool Test_Running = false;

// Trail of the run's message boxes; cleared by the main window on load.
inline QString Msg_Trail;

} // namespace morvane
