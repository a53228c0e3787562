// frmMessages, the message editor window: its controls hold the chat, mail
// and thank-you texts for the whole run (settings/messages.h), and its
// handlers edit them (settings/message_editor.h). Hidden between uses; the
// texts live on while it is.
#pragma once

#include "model/form.h"
#include "ports/registry.h"
#include "settings/messages.h"

namespace quorvex {

struct FrmMessages : MessageControls {
  Form form{"frmMessages"};

  // The load: the texts from the registry, the first page shown.
  void Form_Load(const Registry& registry);
  // Saves the texts and closes the window.
  void cmdSave_Click(Registry& registry);
  // Closes the window; the edits stay in the controls, unsaved.
  void cmdExit_Click() { form.Close(); }
};

}  // namespace quorvex
