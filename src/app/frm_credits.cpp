#include "app/frm_credits.h"

#include "model/draw_status.h"

namespace quorvex {

void FrmCredits::Form_Load() {
  picTitle.Set(kWindowTitle);
  form.Open();
}

}  // namespace quorvex
