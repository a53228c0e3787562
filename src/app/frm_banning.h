// frmBanning, the banning options window: its controls are the ban
// policy's options (requests/ban_policy.h), which they store for the whole
// run; its exit saves them.
#pragma once

#include "model/form.h"
#include "requests/ban_policy.h"

namespace quorvex {

// The captions of the window's controls.
inline constexpr const char* kMistakesCaption =
    "number of mistakes before banning the requester";
inline constexpr const char* kPendingCaptionBefore = "ban for having";
inline constexpr const char* kPendingCaptionAfter = "pending";
inline constexpr const char* kDupReqsCaption = "ban for duplicate requestings";
inline constexpr const char* kFullBoxCaption = "ban for full mail box";

struct FrmBanning : BanningOptions {
  Form form{"frmBanning"};
};

}  // namespace quorvex
