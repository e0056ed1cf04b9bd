#pragma once
// What the test suites and the benchmarks both set up: a private world of
// configuration levels and a layout file, and a command that does nothing.
// Header-only and free of QtTest, so the benchmarks can use it too.
#include "gapp_command.h"
#include "gapp_status_data.h"
#include "zal_os.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace TestUtil {

// User and shared configuration levels, a software directory holding the
// layout file, and a working directory that is current while the world lives.
class World
{
public:
    explicit World(const QByteArray &layout = "<layout/>")
    {
        qputenv("ZAL_USER_CONFIG_DIR", user.path().toLocal8Bit());
        qputenv("ZAL_SHARED_CONFIG_DIR", shared.path().toLocal8Bit());
        qputenv("ZAL_SOFTWARE_DIR", software.path().toLocal8Bit());
        QDir(user.path()).mkpath(QStringLiteral("tmp"));
        QDir(software.path()).mkpath(QStringLiteral("layout"));
        QDir(software.path()).mkpath(QStringLiteral("config"));
        _valid = setLayout(layout);
        _old_cwd = QDir::currentPath();
        QDir::setCurrent(work.path());
    }
    ~World() { QDir::setCurrent(_old_cwd); }
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    // Answers whether the layout file was written completely.
    bool setLayout(const QByteArray &layout)
    {
        QFile f(software.filePath(QStringLiteral("layout/") + Zal::ZalInit::getApplicationName()
                                  + QStringLiteral(".xml")));
        return f.open(QIODevice::WriteOnly) && f.write(layout) == layout.size();
    }
    bool isValid() const { return _valid; }

    QTemporaryDir user, shared, software, work;

private:
    QString _old_cwd;
    bool _valid = false;
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

// The status data of one mode with nothing but the obligatory answers: it
// holds no data and allows every mode change and exit.
class StubStatus : public Zal::GApp::StatusData
{
public:
    explicit StubStatus(unsigned int mode, const QString &mainMenu = QStringLiteral("main"),
                        const QString &view = QString())
        : StatusData(mode, view), _main_menu(mainMenu)
    {
    }
    QString getMainMenuName() override { return _main_menu; }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool isEmpty() override { return true; }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override { return {}; }
    bool isDataModified(const QString &) const override { return false; }

private:
    QString _main_menu;
};

} // namespace TestUtil
