#include "gapp_menu_provider.h"

namespace Zal {
namespace GApp {

SpecialMenuProvider::SpecialMenuProvider(QObject *parent) : QObject(parent)
{
}

SpecialMenuProvider::~SpecialMenuProvider() = default;

bool SpecialMenuProvider::isRegisteredMenu(const Menu *) const
{
    return false;
}

ProfileMenuProvider::~ProfileMenuProvider() = default;

} // namespace GApp
} // namespace Zal
