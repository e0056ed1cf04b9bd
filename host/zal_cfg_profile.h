#pragma once
#include "gapp_export.h"
#include <QString>
#include <map>
#include <set>
#include <vector>

namespace Zal {

class ErrorLog;

namespace Cfg {

// A profile: which commands the menus leave out and which they add, by
// command and menu name (menu names untranslated). Read from a profile file
// (docs/host-layer.md) or filled by the host. GUI thread only.
class GAPP_EXPORT ParsedProfile
{
public:
    ParsedProfile();
    virtual ~ParsedProfile();

    // The five questions of the menus. The get* operations replace the
    // contents of `commands` with the names, in the order the profile gives.
    virtual void getCommandsAtMenuStart(const QString &menu, std::vector<QString> *commands) const;
    virtual bool isCommandHidden(const QString &command) const;
    virtual void getCommandsAfterCommand(const QString &command,
                                         std::vector<QString> *commands) const;
    virtual void getCommandsAfterMenu(const QString &menu, std::vector<QString> *commands) const;
    virtual void getCommandsAfterSpecialMenu(const QString &special,
                                             std::vector<QString> *commands) const;

    void hideCommand(const QString &command);
    void addCommandAtMenuStart(const QString &menu, const QString &command);
    void addCommandAfterCommand(const QString &command, const QString &added);
    void addCommandAfterMenu(const QString &menu, const QString &command);
    void addCommandAfterSpecialMenu(const QString &special, const QString &command);
    void clear();

    // Replace the contents with those of a profile document. A damaged
    // document leaves the contents as they were, answers false and writes
    // one entry, with the line number, to the log (when given).
    bool parse(const QString &fileName, ErrorLog *log);
    bool parseText(const QString &text, ErrorLog *log, const QString &source = QString());

private:
    typedef std::map<QString, std::vector<QString>> Additions;

    std::set<QString> _hidden;
    Additions _atMenuStart;
    Additions _afterCommand;
    Additions _afterMenu;
    Additions _afterSpecialMenu;
};

// The user's active profile, or null (the default).
class GAPP_EXPORT Profile
{
public:
    static ParsedProfile *instance();
    // Takes ownership; the previous profile is deleted. Null clears.
    static void setInstance(ParsedProfile *profile);
    // Parses the file and makes it the active profile; on failure the log
    // gets the reason and the active profile stays.
    static bool load(const QString &fileName, ErrorLog *log);
    static void clear();
};

// The administration profile, or null (the default). Same operations.
class GAPP_EXPORT AdministrationProfile
{
public:
    static ParsedProfile *instance();
    static void setInstance(ParsedProfile *profile);
    static bool load(const QString &fileName, ErrorLog *log);
    static void clear();
};

} // namespace Cfg
} // namespace Zal
