#pragma once
#include "test_world.h"
#include "zal_errorlog.h"
// Helpers shared by the test suites.
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace TestUtil {

// Runs `fn` with standard output redirected to a file and returns what it printed.
template <class F> QByteArray captureStdout(F fn)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("out.txt"));
    std::fflush(stdout);
    const int saved = dup(fileno(stdout));
    FILE *f = std::fopen(QFile::encodeName(path).constData(), "w");
    dup2(fileno(f), fileno(stdout));
    fn();
    std::fflush(stdout);
    dup2(saved, fileno(stdout));
    ::close(saved);
    std::fclose(f);
    QFile in(path);
    in.open(QIODevice::ReadOnly);
    return in.readAll();
}

// A copy of a file's bytes with 1 to 4 random kinds of damage: a byte
// changed, the end cut off, a byte inserted, four bytes set to 0xff.
inline QByteArray damaged(QByteArray bytes, QRandomGenerator &random)
{
    for (int n = 1 + random.bounded(4); n > 0 && !bytes.isEmpty(); --n) {
        const int at = random.bounded(bytes.size());
        switch (random.bounded(4)) {
        case 0: bytes[at] = char(random.bounded(256)); break;
        case 1: bytes.truncate(at); break;
        case 2: bytes.insert(at, char(random.bounded(256))); break;
        default: bytes.replace(at, 4, QByteArray(4, '\xff')); break;
        }
    }
    return bytes;
}

inline QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void writeFile(const QString &path, const QByteArray &data)
{
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly), qPrintable(path));
    f.write(data);
}

// Reads `runs` randomly damaged copies of `good` (the same ones every run)
// from `path` with `load` (true when read, the messages into the log): each answer must
// agree with the log, and `afterFailure` checks what a refusal left behind.
// At least one copy must be refused.
template <class Load, class AfterFailure>
void readDamagedCopies(const QString &path, const QByteArray &good, int runs, Load load,
                       AfterFailure afterFailure)
{
    // The intact file is back however the loop ends.
    const auto restore = qScopeGuard([&] { writeFile(path, good); });
    QRandomGenerator random(20261123);
    int accepted = 0;
    for (int run = 0; run < runs; ++run) {
        writeFile(path, damaged(good, random));
        Zal::ErrorLog log;
        const bool ok = load(&log);
        QCOMPARE(log.isEmpty(), ok);
        if (!ok)
            afterFailure();
        if (QTest::currentTestFailed())
            return;
        accepted += ok;
    }
    QVERIFY(accepted < runs);
}

// The test form of the world: a layout file that cannot be written fails the test.
class Environment : public World
{
public:
    explicit Environment(const QByteArray &layout = "<layout/>") : World(layout)
    {
        QVERIFY2(isValid(), "cannot write the layout file");
    }
};

} // namespace TestUtil
