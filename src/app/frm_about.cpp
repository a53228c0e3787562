#include "app/frm_about.h"

#include <string>

#include "model/draw_status.h"
#include "settings/settings.h"

namespace quorvex {

void FrmAbout::Form_Load() {
  picTitle.Set(kWindowTitle);
  lblName.Set(std::string("quorvex mail server v") + kVersion);
  form.Open();
}

}  // namespace quorvex
