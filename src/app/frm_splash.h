// frmSplash: shown for a second at a normal start while the program loads
// (its decision is frmSplash_Load, app/program.h).
#pragma once

#include "model/draw_status.h"
#include "model/form.h"
#include "model/label.h"

namespace quorvex {

struct FrmSplash {
  Form form{"frmSplash"};
  Label picTitle{"frmSplash.picTitle", kWindowTitle};
};

}  // namespace quorvex
