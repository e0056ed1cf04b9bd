#pragma once
#include "gapp_export.h"
#include <QString>
#include <map>
#include <vector>

namespace Zal {

// Turns names into small unsigned identifiers and back. The first name asked
// for gets 0, the next new one 1, and so on; a name keeps its identifier for
// the life of the object. Not locked: the owner's thread only.
class GAPP_EXPORT UniqueIdCreator
{
public:
    unsigned int getUniqueId(const QString &name);
    bool existUniqueId(const QString &name) const;
    // The name of an identifier; "" for one never handed out.
    QString getUniqueIdText(unsigned int id) const;

private:
    std::map<QString, unsigned int> _ids;
    std::vector<QString> _names; // index: identifier
};

} // namespace Zal
