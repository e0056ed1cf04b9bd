#pragma once
#include "gapp_export.h"
#include <QHash>
#include <QString>
#include <map>
#include <vector>

class QDomDocument;
class QDomElement;
class QKeyEvent;

namespace Zal {
class ErrorLog;
namespace IO {
class InStream;
class OutStream;
} // namespace IO

namespace GApp {

// One named shortcut map: key combinations bound to command names, either for
// every view or for one view widget. Keeps the bindings in force and the
// defaults against which the user file stores its differences. A named map
// registers itself with ShortcutContainer, which owns it from then on; an
// unnamed one is a free-standing object. GUI thread only.
class GAPP_EXPORT ShortcutData
{
public:
    struct Shortcut_t
    {
        QString command;
        QString view; // GLOBAL_VIEW: valid in every view
        int key = 0;  // one combination: Qt key code | modifier bits
    };

    static const QString GLOBAL_VIEW;

    ShortcutData(const QString &name, const QString &translation);
    // Does not unregister: the registry deletes its maps itself.
    ~ShortcutData();
    // A copy is not registered.
    ShortcutData(const ShortcutData &other) = default;
    ShortcutData &operator=(const ShortcutData &other) = default;

    const QString &getTranslation() const { return _translation; }
    const std::vector<Shortcut_t> &getShortcuts() const { return _shortcuts; }
    const std::vector<Shortcut_t> &getDefaultShortcuts() const { return _default_shortcuts; }
    void setShortcuts(const std::vector<Shortcut_t> &shortcuts);
    void setAsDefault();
    void restoreDefault();
    // Renames the command in the current bindings; the defaults keep the old name.
    void renameCommand(const QString &old_name, const QString &new_name);
    // Appends the entries of a map element of the layout file.
    void fillShortcuts(const QDomElement &element);
    // The command bound to the pressed key, or an empty string. A binding for
    // the active view wins; among global bindings of one key the last wins.
    QString find(const QKeyEvent *event) const;
    // The key bound to the command (same rules), or 0.
    int find(const QString &command) const;
    // The map block of the user file: the differences to the defaults.
    void save(IO::OutStream *stream) const;
    void load(IO::InStream *stream);

    // The key of a pressed key: key code and modifier bits, keypad left out.
    static int keyOf(const QKeyEvent *event);

private:
    // Positions of the bindings of one key or command, in binding order.
    using Positions = std::vector<int>;

    void invalidate() { _index_valid = false; }
    void buildIndex() const;
    int findByKey(int key, const QString &activeView) const;
    void apply(const Shortcut_t &entry);

    std::vector<Shortcut_t> _shortcuts;
    std::vector<Shortcut_t> _default_shortcuts;
    QString _translation;
    // The vector above is the truth (its order decides); these indexes beside
    // it keep a lookup independent of the number of bindings and are rebuilt
    // on the first lookup after a change.
    mutable QHash<int, Positions> _by_key;
    mutable QHash<QString, Positions> _by_command;
    mutable bool _index_valid = false;
};

// The registry of shortcut maps by name, the active map and the override map
// that is asked before it. Static members only; owns the maps. GUI thread only.
class GAPP_EXPORT ShortcutContainer
{
public:
    static const char *const FILE_TYPE;

    static void registerData(const QString &name, ShortcutData *data);
    static ShortcutData *getData(const QString &name);
    static std::vector<QString> getAllDataNames();
    static void setActiveData(const QString &name);
    static ShortcutData *getActiveData() { return _active_data; }
    static void setOverrideData(const QString &name);
    static void clearOverrideData() { _override_data = nullptr; }
    static ShortcutData *getOverrideData() { return _override_data; }
    static void renameCommand(const QString &old_name, const QString &new_name);
    // Reads the shortcut sections of the layout file into registered maps.
    static void loadInitialDefault(QDomDocument *doc);
    // The user file over all configuration levels; false when the user's own
    // level failed (its bindings are then back at their defaults).
    static bool load(ErrorLog *log);
    static bool save(ErrorLog *log);
    // Deletes one map (a start-up that failed takes its map back).
    static void deleteData(const QString &name);
    static void deleteAllData();

private:
    static bool save(const QString &file, ErrorLog *log);
    static bool load(const QString &file, ErrorLog *log);

    static std::map<QString, ShortcutData *> _data;
    static ShortcutData *_active_data;
    static ShortcutData *_override_data;
};

} // namespace GApp
} // namespace Zal
