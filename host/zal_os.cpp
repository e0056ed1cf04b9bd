#include "zal_os.h"
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <climits>
#include <cstdlib>
#if defined(Q_OS_UNIX)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace Zal {

namespace {

// Reads "Key:   1234 kB" from a /proc file; -1 when absent.
long long procValue(const char *file, const char *key)
{
    QFile f(QString::fromLatin1(file));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    // /proc files are small; a bounded read guards against anything odd.
    const QByteArray all = f.read(1 << 16);
    for (const QByteArray &line : all.split('\n')) {
        if (line.startsWith(prefix)) {
            const QList<QByteArray> parts = line.mid(prefix.size()).simplified().split(' ');
            bool ok = false;
            const long long v = parts.value(0).toLongLong(&ok);
            return ok ? v : -1;
        }
    }
    return -1;
}

int clampInt(long long v)
{
    if (v < 0)
        return 0;
    return v > INT_MAX ? INT_MAX : int(v);
}

QString g_appName;
int g_maxVm = INT_MAX;

} // namespace

int ZalInit::_app = 0;

bool OS::getEnv(const char *name, QString *value)
{
    const char *v = std::getenv(name);
    if (!v)
        return false;
    if (value)
        *value = QString::fromLocal8Bit(v);
    return true;
}

int OS::getPID()
{
#if defined(Q_OS_UNIX)
    return int(::getpid());
#else
    return int(QCoreApplication::applicationPid());
#endif
}

bool OS::copyFile(const QString &src, const QString &dst)
{
    if (!QFileInfo(src).isFile())
        return false;
    if (QFileInfo::exists(dst) && !QFile::remove(dst))
        return false;
    return QFile::copy(src, dst);
}

bool OS::unlink(const QString &path)
{
    return QFile::remove(path);
}

bool OS::rename(const QString &from, const QString &to)
{
    return QFile::rename(from, to);
}

std::FILE *OS::openStdStream(const QString &fileName, const char *mode)
{
    return std::fopen(QFile::encodeName(fileName).constData(), mode);
}

int OS::getSizeOfMemory()
{
    return clampInt(procValue("/proc/meminfo", "MemTotal"));
}

unsigned int OS::getSizeOfProcess()
{
    const long long v = procValue("/proc/self/status", "VmSize");
    return v < 0 ? 0u : (v > UINT_MAX ? UINT_MAX : unsigned(v));
}

int OS::getSizeOfFreeSystemMemory()
{
    long long v = procValue("/proc/meminfo", "MemAvailable");
    if (v < 0)
        v = procValue("/proc/meminfo", "MemFree");
    return clampInt(v);
}

int OS::getSizeOfFreeSwap()
{
    return clampInt(procValue("/proc/meminfo", "SwapFree"));
}

bool OS::setMaxVirtualMemorySize(int kilobytes)
{
    g_maxVm = kilobytes;
#if defined(__SANITIZE_ADDRESS__)
    // The address sanitizer reserves terabytes of address space up front; any
    // limit would end the process at its next allocation.
    return true;
#elif defined(Q_OS_UNIX)
    struct rlimit rl;
    if (getrlimit(RLIMIT_AS, &rl) != 0)
        return false;
    if (kilobytes >= INT_MAX || kilobytes <= 0)
        rl.rlim_cur = rl.rlim_max;
    else {
        const rlim_t bytes = rlim_t(kilobytes) * 1024;
        rl.rlim_cur = (rl.rlim_max != RLIM_INFINITY && bytes > rl.rlim_max) ? rl.rlim_max : bytes;
    }
    return setrlimit(RLIMIT_AS, &rl) == 0;
#else
    return true;
#endif
}

int OS::getMaxVirtualMemorySize()
{
    return g_maxVm;
}

bool OS::processCanBeTerminated(long long pid)
{
    // Every POSIX process can be sent a terminate request.
    return pid > 0;
}

void ZalInit::setApplicationName(const QString &name)
{
    g_appName = name;
}

QString ZalInit::getApplicationName()
{
    return g_appName.isEmpty() ? QStringLiteral("ZalApplication") : g_appName;
}

QString ZalInit::getConfigDirectory(int kind)
{
    QString dir;
    switch (kind) {
    case 0:
        return getSoftwareDirectory() + QStringLiteral("/config");
    case 1:
        if (OS::getEnv("ZAL_SHARED_CONFIG_DIR", &dir) && !dir.isEmpty())
            return QDir::cleanPath(dir);
        return QStringLiteral("/etc/xdg/") + getApplicationName();
    default:
        if (OS::getEnv("ZAL_USER_CONFIG_DIR", &dir) && !dir.isEmpty())
            return QDir::cleanPath(dir);
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
               + QLatin1Char('/') + getApplicationName();
    }
}

QString ZalInit::getSoftwareDirectory()
{
    QString dir;
    if (OS::getEnv("ZAL_SOFTWARE_DIR", &dir) && !dir.isEmpty())
        return QDir::cleanPath(dir);
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QDir::currentPath();
}

QString Dir::documentsPath()
{
    const QString docs = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return docs.isEmpty() ? QDir::homePath() : docs;
}

bool FileInfo::isWritableDir(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    return info.isDir() && info.isWritable();
}

} // namespace Zal
