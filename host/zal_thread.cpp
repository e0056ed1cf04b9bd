#include "zal_thread.h"
#include "zal_errorlog.h"
#include <QString>

namespace Zal {

namespace {

QString caller(const char *function, const char *file)
{
    return QStringLiteral("%1 (%2)").arg(QLatin1String(function ? function : "?"),
                                         QLatin1String(file ? file : "?"));
}

} // namespace

Mutex::Mutex(const char *function, const char *file) : _function(function), _file(file)
{
}

void Mutex::lock(const char *, const char *, unsigned int)
{
    _mutex.lock();
    _locked.store(true);
}

void Mutex::unlock(const char *function, const char *file, unsigned int line)
{
    // Unlocking a QMutex that is not locked is undefined; say who tried and
    // leave the mutex alone.
    if (!_locked.load()) {
        Debug::printLine(function ? function : "Zal::Mutex::unlock", int(line),
                         QStringLiteral("unlocking a mutex that is not locked: %1, created by %2")
                             .arg(caller(function, file), caller(_function, _file)));
        return;
    }
    _locked.store(false);
    _mutex.unlock();
}

Condition::Condition(Mutex *mutex, const char *, const char *) : _mutex(mutex)
{
}

void Condition::wait()
{
    _mutex->_locked.store(false);
    _cond.wait(&_mutex->_mutex);
    _mutex->_locked.store(true);
}

void Condition::wakeOne()
{
    _cond.wakeOne();
}

void Condition::wakeAll()
{
    _cond.wakeAll();
}

Thread::Thread(LockGUI_t lock, const char *name, const char *file, unsigned int line)
    : Thread(nullptr, lock, name, file, line)
{
}

Thread::Thread(QObject *parent, LockGUI_t lock, const char *name, const char *file, unsigned int line)
    : QThread(parent), _lock(lock), _name(name), _file(file), _line(line)
{
    if (name)
        setObjectName(QString::fromLatin1(name));
}

Thread::~Thread() = default;

} // namespace Zal
