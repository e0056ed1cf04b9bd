#include "gapp_toolbar_file.h"
#include "gapp_toolbar_data.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include "zal_translate.h"

namespace Zal {
namespace GApp {

ToolBarFile *ToolBarFile::_instance = nullptr;

namespace {

const unsigned int FILE_VERSION = 8;
const unsigned int BLOCK_VERSION = 1;

} // namespace

ToolBarFile::ToolBarFile()
    : Cfg::File(ZalInit::getApplicationName() + QStringLiteral(".toolbars"),
                translate("GApp_Shortcut", "custom toolbar"))
{
    setSystemLevelAlwaysSkipped(true);
    // The library may be initialised more than once in a process (tests);
    // a second file object would read and write the same files again.
    delete _instance;
    _instance = this;
}

ToolBarFile::~ToolBarFile()
{
    if (_instance == this)
        _instance = nullptr;
}

void ToolBarFile::syncFromDisk()
{
    ErrorLog log;
    ToolBarContainer::load(&log);
}

// ---- the custom toolbar's block -------------------------------------------------

void ToolBarData::save(IO::OutStream *stream) const
{
    unsigned int count = 0;
    unsigned int length = IO::Stream::SIZE_UINT;
    for (const ToolBarItem &item : _items) {
        if (item.level != Cfg::LEVEL_USER)
            continue;
        ++count;
        length += IO::Stream::SIZE_UINT + IO::Stream::SIZE_BOOL + IO::Stream::sizeOf(item.command);
    }
    stream->beginBlock(length, BLOCK_VERSION);
    stream->writeUInt(count);
    for (const ToolBarItem &item : _items) {
        if (item.level != Cfg::LEVEL_USER)
            continue;
        stream->writeUInt(item.kind);
        stream->writeBool(item.show_name);
        stream->writeString(item.command);
    }
    stream->endBlock();
}

void ToolBarData::load(IO::InStream *stream, Cfg::Level level)
{
    stream->openBlock();
    if (stream->getBlockVersion() != BLOCK_VERSION)
        throw IO::StreamException(QStringLiteral("invalid block version"));
    unsigned int count = 0;
    stream->readUInt(count);
    // The count is not trusted: every item is read from the block, which
    // ends the loop with an exception when the block holds fewer.
    for (unsigned int i = 0; i < count; ++i) {
        ToolBarItem item;
        item.level = level;
        stream->readUInt(item.kind);
        stream->readBool(item.show_name);
        stream->readString(item.command);
        _items.push_back(item);
    }
    stream->closeBlock();
}

// ---- ToolBarContainer: the file -------------------------------------------------

bool ToolBarContainer::save(ErrorLog *log)
{
    if (!ToolBarFile::instance())
        return true;
    return save(ToolBarFile::instance()->getSaveFileName(), log);
}

bool ToolBarContainer::load(ErrorLog *log)
{
    for (auto &entry : _toolbars)
        entry.second->restoreDefault();
    // What earlier readings made part of the defaults is read again below.
    if (ToolBarData *custom = getCustomToolBar()) {
        std::vector<ToolBarData::ToolBarItem> items;
        for (const ToolBarData::ToolBarItem &item : custom->getDefaultItems()) {
            if (item.level == 0)
                items.push_back(item);
        }
        custom->setCommands(items);
        custom->setAsDefault();
    }
    if (!ToolBarFile::instance())
        return true;
    bool result = true;
    for (const auto &file : ToolBarFile::instance()->getLoadFiles()) {
        if (!load(file.second, file.first, log) && file.first == Cfg::LEVEL_USER)
            result = false;
    }
    return result;
}

bool ToolBarContainer::save(const QString &file, ErrorLog *log)
{
    ToolBarData *custom = getCustomToolBar();
    if (!custom)
        return true;
    try {
        IO::OutStream stream(file, QLatin1String(FILE_TYPE), FILE_VERSION);
        custom->save(&stream);
        stream.close();
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot save toolbars: ") << e.getText() << END_LOG;
        return false;
    }
}

bool ToolBarContainer::load(const QString &file, Cfg::Level level, ErrorLog *log)
{
    ToolBarData *custom = getCustomToolBar();
    if (!custom)
        return true;
    try {
        IO::InStream stream(file, QLatin1String(FILE_TYPE));
        if (stream.getVersion() == FILE_VERSION)
            custom->load(&stream, level);
        else if (stream.getVersion() > FILE_VERSION)
            throw IO::StreamException(translate("GAPP_err", "invalid file version"));
        // Older files are not read.
        if (level != Cfg::LEVEL_USER)
            custom->setAsDefault();
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot load toolbars: ") << e.getText() << END_LOG;
        for (auto &entry : _toolbars)
            entry.second->restoreDefault();
        return false;
    }
}

} // namespace GApp
} // namespace Zal
