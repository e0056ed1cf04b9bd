#pragma once
#include "gapp_export.h"
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace Zal {
namespace GIcon {

GAPP_EXPORT extern const char *const ST_SENSOR;
GAPP_EXPORT extern const char *const ACT_CANCEL;
GAPP_EXPORT extern const char *const ACT_TB_GROUP_MENU;

// The process's icons by name. A name is looked up as "<name>.png" in the
// host's own icon folders (addSearchPath, latest first) and then in the
// bundled set (":/zal/icons"). Unknown names give a null icon or pixmap.
// Loaded pixmaps are cached per name and size. GUI thread only.
class GAPP_EXPORT Cache
{
public:
    // Pixel edge of an icon size: 0 small (16), 1 large (24), 2 huge (32);
    // any other value is treated as 0.
    static int getIconSize(int size);
    // An icon holding the pixmaps of one or two sizes (size1 < 0: only size0).
    static QIcon getIconSet(const char *name, int size0, int size1 = -1);
    static QPixmap getIcon(const char *name, int size);
    static QPixmap getSmallIcon(const char *name);
    // "app_<application name in lower case>" if known, else "app_default".
    static QIcon getAppIcon(const QString &applicationName);

    static void addSearchPath(const QString &directory);
    static QStringList searchPaths();
    static void clear();
};

} // namespace GIcon
} // namespace Zal
