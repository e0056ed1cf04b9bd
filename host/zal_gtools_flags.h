#pragma once
#include "gapp_export.h"

namespace Zal {
namespace GTools {

// True while a command started by the remote control runs; the GUI tools
// read it to answer such commands without modal questions. Kept up to date
// by the status manager's start-mode counter. GUI thread only.
GAPP_EXPORT extern bool remote_ctrl_command_active;

} // namespace GTools
} // namespace Zal
