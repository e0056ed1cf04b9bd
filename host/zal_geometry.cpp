#include "zal_geometry.h"

namespace Zal {

const StageIdentifier StageIdentifier::NO_STAGE;

} // namespace Zal
