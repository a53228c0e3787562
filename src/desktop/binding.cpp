#include "desktop/binding.h"

#include "desktop/wide_text.h"

namespace quorvex::desktop {

namespace {

void Insert(HWND list_window, int index, const std::string& item) {
  SendMessageW(list_window, LB_INSERTSTRING, static_cast<WPARAM>(index),
               reinterpret_cast<LPARAM>(Wide(item).c_str()));
}

}  // namespace

void BindList(HWND list_window, ListBox& model, Subscriptions& subs) {
  SendMessageW(list_window, LB_RESETCONTENT, 0, 0);
  for (int i = 0; i < model.Count(); ++i) Insert(list_window, i, model.Item(i));
  subs.Add(model, [list_window](const ListBox&, const ListChange& change) {
    switch (change.op) {
      case ListChange::Op::kAdd:
        Insert(list_window, change.index, change.item);
        break;
      case ListChange::Op::kRemove:
        SendMessageW(list_window, LB_DELETESTRING,
                     static_cast<WPARAM>(change.index), 0);
        break;
      case ListChange::Op::kClear:
        SendMessageW(list_window, LB_RESETCONTENT, 0, 0);
        break;
    }
  });
}

void BindLabel(HWND window, Label& model, Subscriptions& subs) {
  SetText(window, model.caption());
  subs.Add(model,
           [window](const Label& label) { SetText(window, label.caption()); });
}

void BindText(HWND window, TextBox& model, Subscriptions& subs) {
  auto show = [window](const TextBox& box) {
    if (WindowText(window) != box.text) SetText(window, box.text);
    const int end = GetWindowTextLengthW(window);
    SendMessageW(window, EM_SETSEL, end, end);
    SendMessageW(window, EM_SCROLLCARET, 0, 0);
  };
  show(model);
  subs.Add(model, show);
}

std::string WindowText(HWND window) {
  const int n = GetWindowTextLengthW(window);
  std::wstring text(static_cast<std::size_t>(n) + 1, L'\0');
  GetWindowTextW(window, text.data(), n + 1);
  text.resize(static_cast<std::size_t>(n));
  return Utf8(text);
}

void SetText(HWND window, const std::string& text) {
  SetWindowTextW(window, Wide(text).c_str());
}

}  // namespace quorvex::desktop
