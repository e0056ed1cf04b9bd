#include "test_util.h"
#include "zal_os.h"

namespace TestUtil {
QString Environment::appName()
{
    return Zal::ZalInit::getApplicationName();
}
} // namespace TestUtil
