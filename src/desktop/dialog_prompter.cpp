#include "desktop/dialog_prompter.h"

#include <cstdint>
#include <vector>

#include "desktop/wide_text.h"

namespace quorvex::desktop {

namespace {

// A dialog template built in memory: no resource file to ship.
class Template {
 public:
  Template(const std::wstring& title, int cx, int cy, int items) {
    Align(4);
    Dword(DS_MODALFRAME | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU);
    Dword(WS_EX_TOPMOST);
    Word(static_cast<WORD>(items));
    Word(0), Word(0), Word(static_cast<WORD>(cx)), Word(static_cast<WORD>(cy));
    Word(0);  // no menu
    Word(0);  // the dialog class
    Text(title);
    Word(8);
    Text(L"MS Shell Dlg");
  }
  void Item(DWORD style, int x, int y, int cx, int cy, int id, WORD atom,
            const std::wstring& text) {
    Align(4);
    Dword(style | WS_CHILD | WS_VISIBLE);
    Dword(0);
    Word(static_cast<WORD>(x)), Word(static_cast<WORD>(y));
    Word(static_cast<WORD>(cx)), Word(static_cast<WORD>(cy));
    Word(static_cast<WORD>(id));
    Word(0xFFFF), Word(atom);
    Text(text);
    Word(0);  // no creation data
  }
  const DLGTEMPLATE* get() const {
    return reinterpret_cast<const DLGTEMPLATE*>(data_.data());
  }

 private:
  void Align(std::size_t n) {
    while ((data_.size() * 2) % n) data_.push_back(0);
  }
  void Word(WORD w) { data_.push_back(w); }
  void Dword(DWORD d) {
    Word(LOWORD(d));
    Word(HIWORD(d));
  }
  void Text(const std::wstring& s) {
    for (wchar_t c : s) data_.push_back(static_cast<WORD>(c));
    data_.push_back(0);
  }
  std::vector<WORD> data_;
};

struct InputState {
  HWND owner;
  std::wstring prompt;
  std::wstring default_text;
  std::wstring answer;
};

INT_PTR CALLBACK InputProc(HWND dlg, UINT msg, WPARAM wp, LPARAM lp) {
  auto* s = reinterpret_cast<InputState*>(GetWindowLongPtrW(dlg, DWLP_USER));
  switch (msg) {
    case WM_INITDIALOG:
      SetWindowLongPtrW(dlg, DWLP_USER, lp);
      s = reinterpret_cast<InputState*>(lp);
      SetDlgItemTextW(dlg, kIdInputPrompt, s->prompt.c_str());
      SetDlgItemTextW(dlg, kIdInputText, s->default_text.c_str());
      SendDlgItemMessageW(dlg, kIdInputText, EM_SETSEL, 0, -1);
      if (s->owner) {
        // Beside the program's window, where the person is looking.
        RECT rc;
        GetWindowRect(s->owner, &rc);
        SetWindowPos(dlg, HWND_TOPMOST, rc.right + 8, rc.top, 0, 0, SWP_NOSIZE);
      }
      SetFocus(GetDlgItem(dlg, kIdInputText));
      SetForegroundWindow(dlg);
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wp) == IDOK) {
        HWND edit = GetDlgItem(dlg, kIdInputText);
        const int n = GetWindowTextLengthW(edit);
        s->answer.assign(static_cast<std::size_t>(n) + 1, L'\0');
        GetWindowTextW(edit, s->answer.data(), n + 1);
        s->answer.resize(static_cast<std::size_t>(n));
        EndDialog(dlg, IDOK);
        return TRUE;
      }
      if (LOWORD(wp) == IDCANCEL) {
        EndDialog(dlg, IDCANCEL);
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

std::string DialogPrompter::InputBox(const std::string& prompt,
                                     const std::string& title,
                                     const std::string& default_text) {
  InputState state{owner_, Wide(prompt), Wide(default_text), L""};
  Template t(Wide(title), 220, 82, 4);
  t.Item(SS_LEFT, 7, 7, 150, 40, kIdInputPrompt, 0x0082, L"");
  t.Item(BS_DEFPUSHBUTTON | WS_TABSTOP, 163, 6, 50, 14, IDOK, 0x0080, L"OK");
  t.Item(BS_PUSHBUTTON | WS_TABSTOP, 163, 23, 50, 14, IDCANCEL, 0x0080,
         L"Cancel");
  t.Item(ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 7, 60, 206, 14, kIdInputText,
         0x0081, L"");
  const INT_PTR r =
      DialogBoxIndirectParamW(GetModuleHandleW(nullptr), t.get(), owner_,
                              InputProc, reinterpret_cast<LPARAM>(&state));
  return r == IDOK ? Utf8(state.answer) : std::string();
}

bool DialogPrompter::YesNo(const std::string& prompt,
                           const std::string& title) {
  return MessageBoxW(owner_, Wide(prompt).c_str(), Wide(title).c_str(),
                     MB_YESNO | MB_ICONQUESTION | MB_TOPMOST) == IDYES;
}

void DialogPrompter::MsgBox(const std::string& prompt,
                            const std::string& title) {
  MessageBoxW(owner_, Wide(prompt).c_str(), Wide(title).c_str(),
              MB_OK | MB_TOPMOST);
}

}  // namespace quorvex::desktop
