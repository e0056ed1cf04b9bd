#include "zal_icon.h"
#include <QFile>
#include <QHash>

namespace Zal {
namespace GIcon {

const char *const ST_SENSOR = "st_sensor";
const char *const ACT_CANCEL = "act_cancel";
const char *const ACT_TB_GROUP_MENU = "act_tb_group_menu";

namespace {

struct CacheState
{
    QStringList paths;
    QHash<QString, QPixmap> pixmaps; // key: name + '@' + edge; null pixmap: known missing
};

CacheState &state()
{
    static CacheState s;
    return s;
}

QString findFile(const QString &name)
{
    // Names come from layout files too: keep them to one path component.
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return QString();
    const QString file = name + QStringLiteral(".png");
    for (const QString &dir : state().paths)
        if (QFile::exists(dir + QLatin1Char('/') + file))
            return dir + QLatin1Char('/') + file;
    const QString bundled = QStringLiteral(":/zal/icons/") + file;
    return QFile::exists(bundled) ? bundled : QString();
}

} // namespace

int Cache::getIconSize(int size)
{
    switch (size) {
    case 1:
        return 24;
    case 2:
        return 32;
    default:
        return 16;
    }
}

QPixmap Cache::getIcon(const char *name, int size)
{
    const QString n = QString::fromLatin1(name ? name : "");
    const int edge = getIconSize(size);
    const QString key = n + QLatin1Char('@') + QString::number(edge);
    auto &cache = state().pixmaps;
    auto it = cache.constFind(key);
    if (it != cache.constEnd())
        return *it;
    QPixmap pm;
    const QString file = findFile(n);
    if (!file.isEmpty() && pm.load(file) && pm.width() != edge)
        pm = pm.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    cache.insert(key, pm);
    return pm;
}

QIcon Cache::getIconSet(const char *name, int size0, int size1)
{
    QIcon icon;
    const QPixmap first = getIcon(name, size0);
    if (first.isNull())
        return icon;
    icon.addPixmap(first);
    if (size1 >= 0) {
        const QPixmap second = getIcon(name, size1);
        if (!second.isNull())
            icon.addPixmap(second);
    }
    return icon;
}

QPixmap Cache::getSmallIcon(const char *name)
{
    return getIcon(name, 0);
}

QIcon Cache::getAppIcon(const QString &applicationName)
{
    const QByteArray own = (QStringLiteral("app_") + applicationName.toLower()).toLatin1();
    QIcon icon = getIconSet(own.constData(), 0, 2);
    return icon.isNull() ? getIconSet("app_default", 0, 2) : icon;
}

void Cache::addSearchPath(const QString &directory)
{
    state().paths.prepend(directory);
    state().pixmaps.clear();
}

QStringList Cache::searchPaths()
{
    return state().paths;
}

void Cache::clear()
{
    state().paths.clear();
    state().pixmaps.clear();
}

} // namespace GIcon
} // namespace Zal
