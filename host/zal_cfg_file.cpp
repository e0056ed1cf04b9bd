#include "zal_cfg_file.h"
#include "zal_os.h"
#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace Zal {

namespace {

// Function-local so that resources made during static initialisation of
// another library find the registry ready. Registration order matters for
// update() and several resources may share a name, hence a vector.
std::vector<Cfg::Resource *> &resources()
{
    static std::vector<Cfg::Resource *> list;
    return list;
}

std::vector<QString> &skippedNames()
{
    static std::vector<QString> names;
    return names;
}

QString levelPath(Cfg::Level level, const QString &name)
{
    return Cfg::UserFile::getDirectory(level) + QLatin1Char('/') + name;
}

} // namespace

namespace Cfg {

QString UserFile::getDirectory(Level level)
{
    if (level < LEVEL_SYSTEM || level > LEVEL_USER)
        return QString();
    return ZalInit::getConfigDirectory(level);
}

QString UserFile::getLoadFileName(const QString &name)
{
    for (Level level = LEVEL_USER; level >= LEVEL_SYSTEM; --level) {
        const QString path = levelPath(level, name);
        if (QFileInfo(path).isFile())
            return path;
    }
    return levelPath(LEVEL_USER, name);
}

QString UserFile::getSaveFileName(const QString &name)
{
    // A failure to create the directory shows up when the file is written.
    QDir().mkpath(getDirectory(LEVEL_USER));
    return levelPath(LEVEL_USER, name);
}

Resource::Resource(const QString &name, const QString &description)
    : _name(name), _description(description)
{
    ResourceContainer::registerResource(this);
}

Resource::~Resource()
{
    ResourceContainer::unregisterResource(this);
}

void Resource::update() {}

bool Resource::isSystemLevelSkipped() const
{
    return _systemSkipped || ResourceContainer::isSystemLevelSkipped(_name);
}

File::File(const QString &baseName, const QString &description) : Resource(baseName, description)
{
}

File::~File() = default;

void File::update()
{
    syncFromDisk();
}

void File::syncFromDisk() {}

void File::syncToDisk() {}

std::vector<QString> File::getFilesFromLevel(Level level) const
{
    if (level < LEVEL_SYSTEM || level > LEVEL_USER)
        return {};
    const QString path = levelPath(level, getBaseName());
    if (!QFileInfo(path).isFile())
        return {};
    return {path};
}

std::vector<std::pair<Level, QString>> File::getLoadFiles() const
{
    std::vector<std::pair<Level, QString>> files;
    std::vector<QString> canonical;
    for (Level level = LEVEL_SYSTEM; level <= LEVEL_USER; ++level) {
        if (level == LEVEL_SYSTEM && isSystemLevelSkipped())
            continue;
        for (const QString &path : getFilesFromLevel(level)) {
            const QString real = QFileInfo(path).canonicalFilePath();
            const auto seen = std::find(canonical.begin(), canonical.end(), real);
            if (!real.isEmpty() && seen != canonical.end()) {
                const auto index = seen - canonical.begin();
                files.erase(files.begin() + index);
                canonical.erase(seen);
            }
            files.emplace_back(level, path);
            canonical.push_back(real);
        }
    }
    return files;
}

QString File::getSaveFileName() const
{
    return UserFile::getSaveFileName(getBaseName());
}

} // namespace Cfg

void ResourceContainer::registerResource(Cfg::Resource *resource)
{
    auto &list = resources();
    if (resource && std::find(list.begin(), list.end(), resource) == list.end())
        list.push_back(resource);
}

void ResourceContainer::unregisterResource(Cfg::Resource *resource)
{
    auto &list = resources();
    list.erase(std::remove(list.begin(), list.end(), resource), list.end());
}

const std::vector<Cfg::Resource *> &ResourceContainer::getResources()
{
    return resources();
}

void ResourceContainer::setSystemLevelSkippedForResources(const std::vector<QString> &names)
{
    skippedNames() = names;
}

const std::vector<QString> &ResourceContainer::getSystemLevelSkippedForResources()
{
    return skippedNames();
}

bool ResourceContainer::isSystemLevelSkipped(const QString &name)
{
    const auto &names = skippedNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

void ResourceContainer::update()
{
    // A copy, because an update may create or delete resources.
    const std::vector<Cfg::Resource *> snapshot = resources();
    for (Cfg::Resource *resource : snapshot) {
        const auto &list = resources();
        if (std::find(list.begin(), list.end(), resource) != list.end())
            resource->update();
    }
}

} // namespace Zal
