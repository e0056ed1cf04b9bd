#pragma once
#include "gapp_export.h"
#include <QString>

namespace Zal {

// The host's answer to "is this file an image, and of which kind?", from the
// file's first bytes only (the name's extension plays no part). Any thread.
class GAPP_EXPORT Image
{
public:
    enum FileType_t {
        TYPE_UNKNOWN = 0,
        TYPE_PNG = 1,
        TYPE_JPEG = 2,
        TYPE_GIF = 3,
        TYPE_BMP = 4,
        TYPE_TIFF = 5
    };

    // True when the file is a regular, readable file that starts with the
    // signature of one of the recognised formats; the format goes to `type`
    // (when given). Anything else, a missing file or a directory included,
    // answers false and leaves `type` at TYPE_UNKNOWN.
    static bool getFileType(const QString &fileName, FileType_t *type);
};

} // namespace Zal
