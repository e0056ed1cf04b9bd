#include "zal_gtools_flags.h"

namespace Zal {
namespace GTools {

bool remote_ctrl_command_active = false;

} // namespace GTools
} // namespace Zal
