#pragma once
#include "gapp_export.h"
#include <QString>
#include <cstdio>

namespace Zal {

// Operating-system helpers. Sizes are in kilobytes (1024 bytes).
class GAPP_EXPORT OS
{
public:
    // True when the variable is set (even to an empty value); the value is
    // stored when asked for.
    static bool getEnv(const char *name, QString *value = nullptr);
    static int getPID();
    // Copies src over dst (an existing dst is replaced). Answers success.
    static bool copyFile(const QString &src, const QString &dst);
    static bool unlink(const QString &path);
    // Renames; fails when `to` exists (callers unlink it first).
    static bool rename(const QString &from, const QString &to);
    // fopen with the local 8-bit file name; null on failure. The caller closes.
    static std::FILE *openStdStream(const QString &fileName, const char *mode);

    // Physical memory of the machine.
    static int getSizeOfMemory();
    // Virtual size of this process.
    static unsigned int getSizeOfProcess();
    // Memory available to new processes without swapping.
    static int getSizeOfFreeSystemMemory();
    static int getSizeOfFreeSwap();
    // Limits this process's address space; 2147483647 or more means no limit.
    // Only the soft limit is changed, so a later larger value still applies.
    static bool setMaxVirtualMemorySize(int kilobytes);
    static int getMaxVirtualMemorySize();
    // Whether the process can be asked to end gently (a terminate request)
    // rather than killed.
    static bool processCanBeTerminated(long long pid);
};

// Process-wide facts about the running application.
class GAPP_EXPORT ZalInit
{
public:
    static void setApplicationName(const QString &name);
    // The application name; "ZalApplication" until one is set.
    static QString getApplicationName();
    // Kind 0: the software's own "config" folder; 1: the shared (site) level;
    // 2: the user's level. See docs/host-layer.md for where each lives.
    static QString getConfigDirectory(int kind);
    // "ZAL_SOFTWARE_DIR" if set, else the executable's folder.
    static QString getSoftwareDirectory();

    // The host's application type number (passed through, see the docs).
    static int _app;
};

class GAPP_EXPORT Dir
{
public:
    static QString documentsPath();
};

class GAPP_EXPORT FileInfo
{
public:
    static bool isWritableDir(const QString &path);
};

} // namespace Zal
