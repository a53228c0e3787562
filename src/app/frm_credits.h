// frmCredits: the artists and testers.
#pragma once

#include <vector>

#include "model/form.h"
#include "model/label.h"

namespace quorvex {

struct FrmCredits {
  Form form{"frmCredits"};
  Label picTitle{"frmCredits.picTitle", ""};
  Label lblCredits{"frmCredits.lblCredits",
                   "art: nightjar, wren\r\ntesting: halcyon, moth, sable"};

  void Form_Load();
  void lblExit_Click() { form.Close(); }
  std::vector<const Label*> Labels() const { return {&lblCredits}; }
};

}  // namespace quorvex
