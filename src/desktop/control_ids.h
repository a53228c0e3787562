// The desktop program's window classes and control ids: the program's
// windows use them, and so do the tests that find those windows from
// another process. No platform header here.
#pragma once

namespace quorvex::desktop {

// One window class per window.
inline constexpr const wchar_t* kMainClass = L"QuorvexMain";
inline constexpr const wchar_t* kSplashClass = L"QuorvexSplash";
inline constexpr const wchar_t* kBanningClass = L"QuorvexBanning";
inline constexpr const wchar_t* kRoomClass = L"QuorvexRoom";
inline constexpr const wchar_t* kMessagesClass = L"QuorvexMessages";
inline constexpr const wchar_t* kBusterClass = L"QuorvexRoomBuster";
inline constexpr const wchar_t* kAboutClass = L"QuorvexAbout";
inline constexpr const wchar_t* kCreditsClass = L"QuorvexCredits";
inline constexpr const wchar_t* kChatroomClass = L"QuorvexChatroom";
inline constexpr const wchar_t* kBandClass = L"QuorvexBand";

enum ControlId : int {
  // Shared by every window.
  kIdPicTitle = 100,
  kIdLblExit = 101,
  // frmMain.
  kIdLblMinimize = 110,
  kIdPicStatus,
  kIdLblSession,
  kIdLblLists,
  kIdLblMails,
  kIdLblSent,
  kIdLblBanned,
  kIdLblPending,
  kIdLstMails,
  kIdLstPending,
  kIdLstBanned,
  kIdCmdStart,
  kIdCmdPause,
  kIdCmdFile,
  kIdCmdSettings,
  // frmBanning.
  kIdCmbMistakes = 200,
  kIdChkPending,
  kIdCmbMails,
  kIdChkDupReqs,
  kIdChkFullBox,
  // frmRoom.
  kIdLstRoom = 300,
  // frmMessages.
  kIdTab = 400,
  kIdLstChat,
  kIdLstThankyou,
  kIdTxtAdd0,  // txtAdd(0), (1), (2)
  kIdTxtAdd1,
  kIdTxtAdd2,
  kIdCmdInsert0,  // cmdInsert(0), (1), (2)
  kIdCmdInsert1,
  kIdCmdInsert2,
  kIdCmdSave,
  kIdCmdExit,
  // frmRoomBuster.
  kIdTxtRoom = 500,
  kIdBusterStart,
  kIdLblBusts,
  // frmAbout and frmCredits.
  kIdLblText = 600,
  // frmChatroom.
  kIdTxtChat = 700,
  kIdLstPeople,
  kIdLblPeople,
  kIdTxtSend,
};

// A menu entry's command id: this plus its position in the menu tree.
inline constexpr int kMenuBase = 1000;

// The main window's own message asking it to open a menu entry by id,
// as a pick from its pop-up menus would (tests post it).
inline constexpr unsigned kMsgMenuCommand = 0x8000 + 1;  // WM_APP + 1

}  // namespace quorvex::desktop
