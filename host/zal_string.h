#pragma once
#include "gapp_export.h"
#include <QString>
#include <string>

namespace Zal {

// The 8-bit string of configuration keys. Converts to and from QString as
// Latin-1, so every key character survives a round trip through QString.
class ZalString : public std::string
{
public:
    ZalString() = default;
    ZalString(const char *s) : std::string(s ? s : "") {}
    ZalString(const std::string &s) : std::string(s) {}
    ZalString(const QString &s) : std::string(s.toLatin1().toStdString()) {}

    QString toQString() const { return QString::fromLatin1(data(), int(size())); }
};

} // namespace Zal
