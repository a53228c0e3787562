// frmPausing, the restart options window: two check boxes that the machine
// restart shows but does not consult (the banned list is always saved and
// restored, the dead-mail cache never).
#pragma once

#include <array>

#include "model/controls.h"
#include "model/form.h"

namespace quorvex {

inline constexpr const char* kPausingCaptions[2] = {
    "save banning on restart", "save dead mails cache on restart"};

struct FrmPausing {
  std::array<CheckBox, 2> chkCPU;  // captions: kPausingCaptions
  Form form{"frmPausing"};
};

}  // namespace quorvex
