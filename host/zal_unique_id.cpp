#include "zal_unique_id.h"

namespace Zal {

unsigned int UniqueIdCreator::getUniqueId(const QString &name)
{
    const auto it = _ids.find(name);
    if (it != _ids.end())
        return it->second;
    const auto id = static_cast<unsigned int>(_names.size());
    _ids.emplace(name, id);
    _names.push_back(name);
    return id;
}

bool UniqueIdCreator::existUniqueId(const QString &name) const
{
    return _ids.count(name) != 0;
}

QString UniqueIdCreator::getUniqueIdText(unsigned int id) const
{
    return id < _names.size() ? _names[id] : QString();
}

} // namespace Zal
