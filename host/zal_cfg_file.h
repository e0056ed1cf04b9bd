#pragma once
#include "gapp_export.h"
#include <QString>
#include <utility>
#include <vector>

namespace Zal {

namespace Cfg {

// A configuration level: where a file comes from. Higher levels are read
// later and so override lower ones; only the user level is ever written.
typedef int Level;
constexpr Level LEVEL_SYSTEM = 0; // the software's own "config" folder
constexpr Level LEVEL_SHARED = 1; // the site: $ZAL_SHARED_CONFIG_DIR or /etc/xdg/<app>
constexpr Level LEVEL_USER = 2;   // the user: $ZAL_USER_CONFIG_DIR or ~/.config/<app>

// Maps the name of a user file (no directory) to the path to read or write.
class GAPP_EXPORT UserFile
{
public:
    // The directory of a level; empty for an unknown level.
    static QString getDirectory(Level level);
    // The user level's file if it exists, else that of the highest lower level
    // that has one, else the user level's path.
    static QString getLoadFileName(const QString &name);
    // The user level's path; the directory is created when missing.
    static QString getSaveFileName(const QString &name);
};

// Something read from the configuration levels that must follow when the
// level settings change. Registers itself with ResourceContainer for its
// lifetime. GUI thread only.
class GAPP_EXPORT Resource
{
public:
    Resource(const QString &name, const QString &description);
    Resource(const Resource &) = delete;
    Resource &operator=(const Resource &) = delete;

    virtual ~Resource();
    // Brings the resource in line with the files of the levels; nothing here.
    virtual void update();

    const QString &getName() const { return _name; }
    const QString &getDescription() const { return _description; }
    void setSystemLevelAlwaysSkipped(bool skipped) { _systemSkipped = skipped; }
    bool isSystemLevelAlwaysSkipped() const { return _systemSkipped; }
    // Always skipped, or named in ResourceContainer's list.
    bool isSystemLevelSkipped() const;

private:
    QString _name;
    QString _description;
    bool _systemSkipped = false;
};

// A user file that exists once per level, under one base name in each
// level's directory. Subclasses read and write the contents.
class GAPP_EXPORT File : public Resource
{
public:
    File(const QString &baseName, const QString &description);

    ~File() override;
    // Reads the files again: syncFromDisk().
    void update() override;
    // Read or write the contents; the base class has none.
    virtual void syncFromDisk();
    virtual void syncToDisk();
    // The existing files of one level (at most one here).
    virtual std::vector<QString> getFilesFromLevel(Level level) const;
    // The existing files to read, lowest level first, without the system
    // level when it is skipped. A file reached from two levels (the same
    // directory configured twice) is listed once, at the higher level.
    virtual std::vector<std::pair<Level, QString>> getLoadFiles() const;
    // The user level's path; the directory is created when missing.
    virtual QString getSaveFileName() const;

    const QString &getBaseName() const { return getName(); }
};

} // namespace Cfg

// The registry of all resources, in the order they registered.
class GAPP_EXPORT ResourceContainer
{
public:
    static void registerResource(Cfg::Resource *resource);
    static void unregisterResource(Cfg::Resource *resource);
    static const std::vector<Cfg::Resource *> &getResources();

    // Resources of these names skip the system level, as if they were marked
    // to; the list replaces the previous one.
    static void setSystemLevelSkippedForResources(const std::vector<QString> &names);
    static const std::vector<QString> &getSystemLevelSkippedForResources();
    static bool isSystemLevelSkipped(const QString &name);

    // update() of every registered resource, in registration order. A
    // resource that an earlier update() unregistered is passed over.
    static void update();
};

} // namespace Zal
