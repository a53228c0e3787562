#include "settings/message_editor.h"

#include <algorithm>

#include "model/text_util.h"
#include "model/utf8.h"
#include "settings/inserts.h"
#include "settings/menu_tree.h"

namespace quorvex {

namespace {

bool ValidBox(int index) { return index >= 0 && index <= 2; }

std::size_t& Caret(MessageControls& form, int index) {
  std::size_t& caret = form.caret[index];
  caret = std::min(caret, form.txtAdd[index].text.size());
  return caret;
}

void InsertAtCaret(MessageControls& form, int index, const std::string& text) {
  std::size_t& caret = Caret(form, index);
  std::string changed = form.txtAdd[index].text;
  changed.insert(caret, text);
  form.txtAdd[index].Set(std::move(changed));
  caret += text.size();
}

}  // namespace

void Tab_Click(MessageControls& form, int Index) {
  if (ValidBox(Index)) form.tab = Index;
}

bool txtAdd_KeyPress(MessageControls& form, int Index, int KeyAscii) {
  if (!ValidBox(Index)) return false;
  TextBox& box = form.txtAdd[Index];
  if (KeyAscii == kKeyEnter && Index != 1) {
    if (!box.text.empty()) {
      ListBox& list = Index == 0 ? form.lstChat : form.lstThankyou;
      list.Add(box.text);
      box.Set("");
      form.caret[Index] = 0;
      return true;
    }
    return false;  // a one-line box takes no line break
  }
  std::size_t& caret = Caret(form, Index);
  if (KeyAscii == kKeyEnter) {
    InsertAtCaret(form, Index, "\r\n");
  } else if (KeyAscii == kKeyBackspace) {
    // Back over one character as the box shows it.
    const std::string_view head(box.text.data(), caret);
    const std::size_t chars = Utf8Characters(head);
    const std::size_t start = chars == 0 ? 0 : Utf8Offset(head, chars - 1);
    std::string text = box.text;
    text.erase(start, caret - start);
    caret = start;
    box.Set(std::move(text));
  } else if ((KeyAscii >= 32 && KeyAscii < 127) || KeyAscii == '\t') {
    InsertAtCaret(form, Index, std::string(1, static_cast<char>(KeyAscii)));
  }
  return false;
}

void SetCaret(MessageControls& form, int Index, std::size_t position) {
  if (!ValidBox(Index)) return;
  form.caret[Index] = position;
  Caret(form, Index);
}

void lstChat_DblClick(MessageControls& form) {
  int selected = form.lstChat.selected();
  if (selected >= 0) form.lstChat.Remove(selected);
}

void lstThankyou_Click(MessageControls& form, int index) {
  form.lstThankyou.Select(index);
  int selected = form.lstThankyou.selected();
  if (selected >= 0) form.lstThankyou.Remove(selected);
}

bool ClickInsertItem(MessageControls& form, const std::string& name) {
  std::string item = name;
  if (StartsWith(item, kMessagesMenuPrefix))
    item = item.substr(std::string(kMessagesMenuPrefix).size());
  for (const InsertMenuItem& insert : kInsertMenuItems) {
    if (item == insert.name) {
      InsertAtCaret(form, form.tab, insert.code);
      return true;
    }
  }
  return false;
}

}  // namespace quorvex
