#pragma once
#include "gapp_command.h"
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

// A private world for one test: user and shared configuration levels, a
// software directory holding the layout file, and a working directory.
class Environment
{
public:
    explicit Environment(const QByteArray &layout = "<layout/>")
    {
        qputenv("ZAL_USER_CONFIG_DIR", user.path().toLocal8Bit());
        qputenv("ZAL_SHARED_CONFIG_DIR", shared.path().toLocal8Bit());
        qputenv("ZAL_SOFTWARE_DIR", software.path().toLocal8Bit());
        QDir(user.path()).mkpath(QStringLiteral("tmp"));
        QDir(software.path()).mkpath(QStringLiteral("layout"));
        QDir(software.path()).mkpath(QStringLiteral("config"));
        setLayout(layout);
        oldCwd = QDir::currentPath();
        QDir::setCurrent(work.path());
    }
    ~Environment() { QDir::setCurrent(oldCwd); }

    void setLayout(const QByteArray &layout)
    {
        writeFile(software.filePath(QStringLiteral("layout/") + appName() + QStringLiteral(".xml")), layout);
    }
    static QString appName();

    QTemporaryDir user, shared, software, work;
    QString oldCwd;
};

// A command that is always sensitive, takes any parameters and counts its
// menu runs.
class StubCommand : public Zal::GApp::Command
{
public:
    explicit StubCommand(const QString &name, bool menuFunction = true)
        : Command(menuFunction, false, name, name, QString(), nullptr)
    {
    }
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return true; }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, Zal::ErrorLog *) override { return true; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool executeMenu() override
    {
        ++runs;
        return true;
    }
    int runs = 0;
};

} // namespace TestUtil
