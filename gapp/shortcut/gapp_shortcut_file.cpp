#include "gapp_shortcut_file.h"
#include "gapp_shortcut.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include "zal_translate.h"

namespace Zal {
namespace GApp {

ShortcutFile *ShortcutFile::_instance = nullptr;

namespace {

// Version 8 files hold the same blocks; only version 1 map blocks differ.
const unsigned int FILE_VERSION = 9;
const unsigned int OLD_FILE_VERSION = 8;
const unsigned int MAP_COUNT_BLOCK_VERSION = 1;
const unsigned int MAP_NAME_BLOCK_VERSION = 1;

} // namespace

ShortcutFile::ShortcutFile()
    : Cfg::File(ZalInit::getApplicationName() + QStringLiteral(".shortcuts"),
                translate("GApp_Shortcut", "shortcuts"))
{
    setSystemLevelAlwaysSkipped(true);
    // The library may be initialised more than once in a process (tests);
    // a second file object would read and write the same files again.
    delete _instance;
    _instance = this;
}

ShortcutFile::~ShortcutFile()
{
    if (_instance == this)
        _instance = nullptr;
}

void ShortcutFile::syncFromDisk()
{
    ErrorLog log;
    ShortcutContainer::load(&log);
}

bool ShortcutContainer::save(ErrorLog *log)
{
    if (!ShortcutFile::instance())
        return true;
    return save(ShortcutFile::instance()->getSaveFileName(), log);
}

bool ShortcutContainer::load(ErrorLog *log)
{
    for (auto &entry : _data)
        entry.second->restoreDefault();
    if (!ShortcutFile::instance())
        return true;
    bool result = true;
    for (const auto &file : ShortcutFile::instance()->getLoadFiles()) {
        const bool loaded = load(file.second, log);
        // Shared levels become part of the defaults, so the user file only
        // holds the user's own changes; a failed user file leaves nothing behind.
        for (auto &entry : _data) {
            if (file.first != Cfg::LEVEL_USER && loaded)
                entry.second->setAsDefault();
            if (file.first == Cfg::LEVEL_USER && !loaded)
                entry.second->restoreDefault();
        }
        if (file.first == Cfg::LEVEL_USER && !loaded)
            result = false;
    }
    return result;
}

bool ShortcutContainer::save(const QString &file, ErrorLog *log)
{
    try {
        IO::OutStream stream(file, QLatin1String(FILE_TYPE), FILE_VERSION);
        stream.beginBlock(IO::Stream::SIZE_UINT, MAP_COUNT_BLOCK_VERSION);
        stream.writeUInt(unsigned(_data.size()));
        stream.endBlock();
        for (const auto &entry : _data) {
            stream.beginBlock(IO::Stream::sizeOf(entry.first), MAP_NAME_BLOCK_VERSION);
            stream.writeString(entry.first);
            stream.endBlock();
            entry.second->save(&stream);
        }
        stream.close();
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot save shortcut data: %1").arg(e.getText()) << END_LOG;
        return false;
    }
}

bool ShortcutContainer::load(const QString &file, ErrorLog *log)
{
    try {
        IO::InStream stream(file, QLatin1String(FILE_TYPE));
        if (stream.getVersion() != FILE_VERSION && stream.getVersion() != OLD_FILE_VERSION)
            throw IO::StreamException(translate("GAPP_err", "invalid file version"));
        stream.openBlock();
        if (stream.getBlockVersion() != MAP_COUNT_BLOCK_VERSION)
            throw IO::StreamException(translate("GAPP_err", "invalid map count block version"));
        unsigned int count = 0;
        stream.readUInt(count);
        stream.closeBlock();
        // The count is not trusted: a missing block ends the loop with an exception.
        for (unsigned int i = 0; i < count; ++i) {
            stream.openBlock();
            if (stream.getBlockVersion() != MAP_NAME_BLOCK_VERSION)
                throw IO::StreamException(translate("GAPP_err", "invalid map name block version"));
            QString name;
            stream.readString(name);
            stream.closeBlock();
            if (ShortcutData *data = getData(name)) {
                data->load(&stream);
            } else {
                // A map that no longer exists: its block is read and dropped.
                ShortcutData skipped{QString(), QString()};
                skipped.load(&stream);
            }
        }
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot load shortcut data: %1").arg(e.getText()) << END_LOG;
        return false;
    }
}

} // namespace GApp
} // namespace Zal
