// The chat client's windows as the window-access port sees them: the
// class names the automation looks for, the positions of the icons it
// clicks (1-based, counted among the window's "_AOL_Icon" children), and
// the items of the toolbar's mail menu it opens. The automation finds the
// client's windows by these, and the simulated client builds its windows
// from the same names, so that the two cannot drift apart.
#pragma once

namespace quorvex::aol {

// Window classes.
inline constexpr const char* kFrameClass = "AOL Frame25";
inline constexpr const char* kMdiClass = "MDIClient";
inline constexpr const char* kChildClass = "AOL Child";
inline constexpr const char* kModalClass = "_AOL_Modal";
inline constexpr const char* kDialogClass = "#32770";
inline constexpr const char* kPopupMenuClass = "#32768";
inline constexpr const char* kToolbarFrameClass = "AOL Toolbar";
inline constexpr const char* kToolbarClass = "_AOL_Toolbar";
inline constexpr const char* kIconClass = "_AOL_Icon";
inline constexpr const char* kRichTextClass = "RICHCNTL";
inline constexpr const char* kStaticClass = "_AOL_Static";
inline constexpr const char* kEditClass = "_AOL_Edit";
inline constexpr const char* kComboClass = "_AOL_Combobox";
inline constexpr const char* kFontComboClass = "_AOL_FontCombo";
inline constexpr const char* kTreeClass = "_AOL_Tree";
inline constexpr const char* kListClass = "_AOL_Listbox";
inline constexpr const char* kViewClass = "_AOL_View";
inline constexpr const char* kTabControlClass = "_AOL_TabControl";
inline constexpr const char* kTabPageClass = "_AOL_TabPage";
inline constexpr const char* kCheckboxClass = "_AOL_Checkbox";
inline constexpr const char* kButtonClass = "_AOL_Button";

// Icon positions.
inline constexpr int kToolbarMailIcon = 3;      // opens the mail menu
inline constexpr int kToolbarWriteIcon = 2;     // "Write"
inline constexpr int kOpenMailForwardIcon = 8;  // an open mail's "Forward"
inline constexpr int kMailboxDeleteIcon = 7;    // the online mailbox's "Delete"
inline constexpr int kWaitingDeleteIcon = 2;    // mail waiting to be sent
// A forward window's "Send Now", then its "Send Later".
inline constexpr int kForwardSendNowIcon = 14;
inline constexpr int kForwardSendLaterIcon = 15;
// Write Mail's "Send Now", then its "Send Later".
inline constexpr int kWriteSendNowIcon = 16;
inline constexpr int kWriteSendLaterIcon = 17;
// An instant message's "Send", counted from its text field; the window's
// own count has the icons before the field ("Address Book") too.
inline constexpr int kImSendIcon = 9;
inline constexpr int kImIconsBeforeText = 1;

}  // namespace quorvex::aol
