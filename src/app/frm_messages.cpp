#include "app/frm_messages.h"

#include "settings/message_editor.h"

namespace quorvex {

void FrmMessages::Form_Load(const Registry& registry) {
  LoadMessages(*this, registry);
  Tab_Click(*this, 0);
  form.Open();
}

void FrmMessages::cmdSave_Click(Registry& registry) {
  SaveMessages(*this, registry);
  form.Close();
}

}  // namespace quorvex
