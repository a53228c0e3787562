// The program's small informational windows and messages: the splash,
// about and credits windows, the contact-info message and the web entry.
// Each window is a model with its captions; a view draws them.
#pragma once

#include <string>
#include <vector>

#include "model/draw_status.h"
#include "model/form.h"
#include "model/label.h"
#include "ports/prompter.h"

namespace quorvex {

inline constexpr const char* kContactInfoTitle = "contact info";
inline constexpr const char* kContactInfoText =
    "aol: Kestrin Qv\r\naim: KestrinQuorvex";
inline constexpr const char* kWebTitle = "quorvex website";

// Shown for a second at a normal start while the program loads.
struct FrmSplash {
  Form form{"frmSplash"};
  Label picTitle{"frmSplash.picTitle", kWindowTitle};
};

// "about": the program's name and version, what it was written for, who
// wrote it and who drew it.
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

// "credits": the artists and testers.
struct FrmCredits {
  Form form{"frmCredits"};
  Label picTitle{"frmCredits.picTitle", ""};
  Label lblCredits{"frmCredits.lblCredits",
                   "art: nightjar, wren\r\ntesting: halcyon, moth, sable"};

  void Form_Load();
  void lblExit_Click() { form.Close(); }
  std::vector<const Label*> Labels() const { return {&lblCredits}; }
};

// mnuContactInfo: a message titled "contact info" with the author's names.
void mnuContactInfo_Click(Prompter& prompter);
// mnuWeb: the program's web address, shown in a message to copy.
void mnuWeb_Click(Prompter& prompter);

}  // namespace quorvex
