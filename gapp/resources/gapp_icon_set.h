#pragma once
#include "gapp_export.h"
#include <QPixmap>
#include <QString>
#include <map>

class QIcon;

namespace Zal {
class ErrorLog;
namespace IO {
class InStream;
class OutStream;
} // namespace IO

namespace GApp {

// The user's own command icons, by command name: one pixmap each and the
// QIcon made from it (owned here). A command asks here before it uses its
// own icon. The icons are kept in the user file "<application>.icons";
// the main window reads it at start-up, writing it is the host's call.
// Static members only; GUI thread only.
class GAPP_EXPORT IconSetContainer
{
public:
    static void setIcon(const QString &name, const QPixmap &pixmap);
    static void clearIcon(const QString &name);
    // The user's icon of the name, or null.
    static const QIcon *getIconSet(const QString &name);
    static void deleteAllIconSets();
    static bool saveStandard(ErrorLog *log);
    static bool loadStandard(ErrorLog *log);

private:
    static bool save(const QString &fileName, ErrorLog *log);
    static bool load(const QString &fileName, ErrorLog *log);
    static void savePixmap(IO::OutStream *stream, const QPixmap &pixmap);
    static QPixmap loadPixmap(IO::InStream *stream);

    static std::map<QString, QPixmap> _pixmaps;
    static std::map<QString, QIcon *> _icon_sets;
    static const char *const FILE_TYPE;
};

} // namespace GApp
} // namespace Zal
