#pragma once
#include "test_world.h"
// Helpers shared by the test suites.
#include <QDir>
#include <QFile>
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

inline void writeFile(const QString &path, const QByteArray &data)
{
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly), qPrintable(path));
    f.write(data);
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
