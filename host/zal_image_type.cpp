#include "zal_image_type.h"
#include <QByteArray>
#include <QFile>
#include <QFileInfo>

namespace Zal {

namespace {

struct Signature
{
    Image::FileType_t type;
    const char *bytes;
    int size;
};

// Only formats with a signature that no text file starts with. Qt's own
// content sniffing (QImageReader::imageFormat) would also accept a text file
// beginning with "P1".."P6" (PBM/PPM) or "#define" (XBM), and the application
// types read such text files themselves.
const Signature signatures[] = {
    {Image::TYPE_PNG, "\x89PNG\r\n\x1a\n", 8},
    {Image::TYPE_JPEG, "\xff\xd8\xff", 3},
    {Image::TYPE_GIF, "GIF87a", 6},
    {Image::TYPE_GIF, "GIF89a", 6},
    {Image::TYPE_BMP, "BM", 2}, // and see bitmapReservedFieldsAreZero
    {Image::TYPE_TIFF, "II*\0", 4},
    {Image::TYPE_TIFF, "MM\0*", 4},
};

constexpr qint64 HEADER_SIZE = 10; // the longest signature, or the bitmap's reserved fields

// "BM" alone is too weak (a text may start with it): a bitmap's two reserved
// words after the file size must be zero as well.
bool bitmapReservedFieldsAreZero(const QByteArray &head)
{
    return head.size() >= 10 && head.mid(6, 4) == QByteArray(4, '\0');
}

} // namespace

bool Image::getFileType(const QString &fileName, FileType_t *type)
{
    if (type)
        *type = TYPE_UNKNOWN;
    // Only regular files: opening a FIFO would block until someone writes.
    if (!QFileInfo(fileName).isFile())
        return false;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(HEADER_SIZE);
    for (const Signature &s : signatures) {
        if (head.startsWith(QByteArray::fromRawData(s.bytes, s.size))
            && (s.type != TYPE_BMP || bitmapReservedFieldsAreZero(head))) {
            if (type)
                *type = s.type;
            return true;
        }
    }
    return false;
}

} // namespace Zal
