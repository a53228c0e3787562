// frmAbout: the program's name and version, what it was written for, who
// wrote it and who drew it.
#pragma once

#include <vector>

#include "model/form.h"
#include "model/label.h"

namespace quorvex {

struct FrmAbout {
  Form form{"frmAbout"};
  Label picTitle{"frmAbout.picTitle", ""};
  Label lblName{"frmAbout.lblName", "quorvex mail server v"};
  Label lblFor{"frmAbout.lblFor", "coded for america online 5.0"};
  Label lblAuthor{"frmAbout.lblAuthor", "coded by kestrin"};
  Label lblArt{"frmAbout.lblArt", "art by nightjar"};

  void Form_Load();
  void lblExit_Click() { form.Close(); }
  std::vector<const Label*> Labels() const {
    return {&lblName, &lblFor, &lblAuthor, &lblArt};
  }
};

}  // namespace quorvex
