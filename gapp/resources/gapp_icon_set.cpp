#include "gapp_icon_set.h"
#include "gapp_ccontainer.h"
#include "zal_cfg_file.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_os.h"
#include "zal_stream.h"
#include "zal_translate.h"
#include <QIcon>
#include <QImage>
#include <memory>

namespace Zal {
namespace GApp {

std::map<QString, QPixmap> IconSetContainer::_pixmaps;
std::map<QString, QIcon *> IconSetContainer::_icon_sets;
const char *const IconSetContainer::FILE_TYPE = "GAppIconSets";

namespace {

const unsigned int FILE_VERSION = 3;
const unsigned int COUNT_BLOCK_VERSION = 1;
const unsigned int NAME_BLOCK_VERSION = 2;
// Name blocks of this version are followed by a second, unused pixmap block.
const unsigned int OLD_NAME_BLOCK_VERSION = 1;
const unsigned int PIXMAP_BLOCK_VERSION = 1;

QString standardFileName()
{
    return ZalInit::getApplicationName() + QStringLiteral(".icons");
}

// Brings the command's shared action (and with it the toolbar buttons that
// show it) in line with the icon the command answers now. Called while the
// replaced QIcon still exists: the action remembers icons by address, and a
// new icon must never be taken for the old one at a reused address.
void refreshCommand(const QString &name)
{
    if (CommandAction *action = CommandContainer::getCommandAction(name))
        action->updateAction(true);
}

} // namespace

void IconSetContainer::setIcon(const QString &name, const QPixmap &pixmap)
{
    std::unique_ptr<QIcon> old;
    const auto it = _icon_sets.find(name);
    if (it != _icon_sets.end()) {
        old.reset(it->second);
        _icon_sets.erase(it);
        _pixmaps.erase(name);
    }
    _icon_sets[name] = new QIcon(pixmap);
    _pixmaps[name] = pixmap;
    refreshCommand(name);
}

void IconSetContainer::clearIcon(const QString &name)
{
    const auto it = _icon_sets.find(name);
    if (it == _icon_sets.end())
        return;
    std::unique_ptr<QIcon> old(it->second);
    _icon_sets.erase(it);
    _pixmaps.erase(name);
    refreshCommand(name);
}

const QIcon *IconSetContainer::getIconSet(const QString &name)
{
    const auto it = _icon_sets.find(name);
    return it == _icon_sets.end() ? nullptr : it->second;
}

void IconSetContainer::deleteAllIconSets()
{
    std::map<QString, QIcon *> icons;
    icons.swap(_icon_sets);
    _pixmaps.clear();
    for (const auto &entry : icons)
        refreshCommand(entry.first);
    for (const auto &entry : icons)
        delete entry.second;
}

bool IconSetContainer::saveStandard(ErrorLog *log)
{
    return save(Cfg::UserFile::getSaveFileName(standardFileName()), log);
}

bool IconSetContainer::loadStandard(ErrorLog *log)
{
    return load(Cfg::UserFile::getLoadFileName(standardFileName()), log);
}

bool IconSetContainer::save(const QString &fileName, ErrorLog *log)
{
    try {
        IO::OutStream stream(fileName, QLatin1String(FILE_TYPE), FILE_VERSION);
        stream.beginBlock(IO::Stream::SIZE_UINT, COUNT_BLOCK_VERSION);
        stream.writeUInt(unsigned(_pixmaps.size()));
        stream.endBlock();
        for (const auto &entry : _pixmaps) {
            stream.beginBlock(IO::Stream::sizeOf(entry.first), NAME_BLOCK_VERSION);
            stream.writeString(entry.first);
            stream.endBlock();
            savePixmap(&stream, entry.second);
        }
        stream.close();
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot save icons") << ":" << e.getText() << END_LOG;
        return false;
    }
}

bool IconSetContainer::load(const QString &fileName, ErrorLog *log)
{
    deleteAllIconSets();
    try {
        IO::InStream stream(fileName, QLatin1String(FILE_TYPE));
        const unsigned int version = stream.getVersion();
        if (version == 0 || version > FILE_VERSION)
            throw IO::StreamException(translate("GAPP_err", "invalid file version"));
        // Older files held icons of another kind; they are accepted and skipped.
        if (version < FILE_VERSION)
            return true;
        stream.openBlock();
        if (stream.getBlockVersion() != COUNT_BLOCK_VERSION)
            throw IO::StreamException(translate("GAPP_err", "invalid icon count block version"));
        unsigned int count = 0;
        stream.readUInt(count);
        stream.closeBlock();
        // The count is not trusted: a missing block ends the loop with an exception.
        for (unsigned int i = 0; i < count; ++i) {
            stream.openBlock();
            const unsigned int nameVersion = stream.getBlockVersion();
            QString name;
            stream.readString(name);
            stream.closeBlock();
            if (nameVersion == NAME_BLOCK_VERSION) {
                setIcon(name, loadPixmap(&stream));
            } else if (nameVersion == OLD_NAME_BLOCK_VERSION) {
                setIcon(name, loadPixmap(&stream));
                loadPixmap(&stream);
            } else {
                throw IO::StreamException(translate("GAPP_err", "invalid icon name block version"));
            }
        }
        return true;
    } catch (const Exception &e) {
        if (log)
            *log << translate("GAPP_err", "cannot load icons") << ":" << e.getText() << END_LOG;
        return false;
    }
}

void IconSetContainer::savePixmap(IO::OutStream *stream, const QPixmap &pixmap)
{
    if (pixmap.isNull()) {
        stream->beginBlock(2 * IO::Stream::SIZE_UINT, PIXMAP_BLOCK_VERSION);
        stream->writeUInt(0);
        stream->writeUInt(0);
        stream->endBlock();
        return;
    }
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    const unsigned int width = unsigned(image.width());
    const unsigned int height = unsigned(image.height());
    const quint64 size = quint64(width) * height * IO::Stream::SIZE_COLOR + 2 * IO::Stream::SIZE_UINT;
    // A block states its size in 32 bits; no icon comes near that.
    if (size > 0xffffffffu)
        throw IO::StreamException(translate("GAPP_err", "icon too large"));
    stream->beginBlock(unsigned(size), PIXMAP_BLOCK_VERSION);
    stream->writeUInt(width);
    stream->writeUInt(height);
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            IO::Color c;
            c.red = quint8(qRed(line[x]));
            c.green = quint8(qGreen(line[x]));
            c.blue = quint8(qBlue(line[x]));
            c.alpha = quint8(qAlpha(line[x]));
            stream->writeColor(c);
        }
    }
    stream->endBlock();
}

QPixmap IconSetContainer::loadPixmap(IO::InStream *stream)
{
    stream->openBlock();
    if (stream->getBlockVersion() != PIXMAP_BLOCK_VERSION)
        throw IO::StreamException(translate("GAPP_err", "invalid icon block version"));
    unsigned int width = 0;
    unsigned int height = 0;
    stream->readUInt(width);
    stream->readUInt(height);
    QPixmap pixmap;
    if (width != 0 && height != 0) {
        // Checked before the image is allocated: the colours must really be
        // in the block, whose size the stream has checked against the file.
        const quint64 bytes = quint64(width) * height * IO::Stream::SIZE_COLOR;
        if (bytes > stream->getBlockRemaining() || width > 0x7fffffffu || height > 0x7fffffffu)
            throw IO::StreamException(translate("GAPP_err", "invalid icon size %1 x %2").arg(width).arg(height));
        QImage image(int(width), int(height), QImage::Format_ARGB32);
        if (image.isNull())
            throw IO::StreamException(translate("GAPP_err", "invalid icon size %1 x %2").arg(width).arg(height));
        for (int y = 0; y < image.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                IO::Color c;
                stream->readColor(c);
                line[x] = qRgba(c.red, c.green, c.blue, c.alpha);
            }
        }
        pixmap = QPixmap::fromImage(image);
    }
    stream->closeBlock();
    return pixmap;
}

} // namespace GApp
} // namespace Zal
