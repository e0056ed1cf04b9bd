#include "demo_files.h"
#include "demo_document.h"
#include "demo_macro.h"
#include "demo_status.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_errorlog.h"
#include <QFileInfo>
#include <cstdio>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

const QString SCAN_MAGIC = QStringLiteral("#ZAL-SCAN");

// Whether the first data line among the bytes ('#' starts a comment) holds
// three numbers. Only the first bytes of the file are there, so the file's
// later lines are the reader's business.
bool startsLikePointList(const std::vector<char> &firstBytes)
{
    const QByteArray head(firstBytes.data(), qsizetype(firstBytes.size()));
    if (head.contains('\0'))
        return false;
    for (const QByteArray &raw : head.split('\n')) {
        const QString line = QString::fromLatin1(raw).section(QLatin1Char('#'), 0, 0).trimmed();
        if (line.isEmpty())
            continue;
        const QStringList parts = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (parts.size() != 3)
            return false;
        for (const QString &part : parts) {
            bool ok = false;
            part.toDouble(&ok);
            if (!ok)
                return false;
        }
        return true;
    }
    return false;
}

class FileStatus : public DemoStatus
{
public:
    FileStatus(unsigned int mode, const QString &name)
        : DemoStatus(mode, name), _scans(name == QLatin1String("inspect"))
    {
    }

    bool canOpenFile(const std::vector<char> &firstBytes) override
    {
        const bool scan = checkMagicHeader(firstBytes, SCAN_MAGIC);
        return _scans ? scan : !scan && startsLikePointList(firstBytes);
    }

    bool openFile(const QString &fileName, QString *, QString *errorCode, ErrorLog *log) override
    {
        QString error;
        if (Document::instance().open(fileName, &error))
            return true;
        *errorCode = QStringLiteral("GAPP-0007");
        if (log)
            *log << error << END_LOG;
        return false;
    }

private:
    bool _scans;
};

int failures = 0;

void check(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok  " : "FAIL", what.toLocal8Bit().constData());
    failures += ok ? 0 : 1;
}

} // namespace

StatusData *createStatus(unsigned int mode, const QString &name)
{
    return new FileStatus(mode, name);
}

int checkOpenByContent(const QString &macro)
{
    failures = 0;
    AppStatusManager *smgr = MainWindow::smgr;
    const int macroFailures = playMacro(macro);
    check(macroFailures == 0, QStringLiteral("opening by content gave every expected result"));

    // Directly as well: a scan from the measuring mode lands in the inspection mode.
    smgr->setAppMode(smgr->getUniqueId(QStringLiteral("measure")));
    QString second, code;
    ErrorLog log;
    const bool opened = smgr->openFile(QStringLiteral("data/bracket.scan"), &second, &code, &log);
    check(opened && smgr->getAppMode() == smgr->getUniqueId(QStringLiteral("inspect"))
              && Document::instance().points().size() == 6
              && QFileInfo(Document::instance().fileName()).fileName() == QStringLiteral("bracket.scan"),
          QStringLiteral("a scan opened in the measuring mode switches to inspection with its 6 points") + log.getText());
    smgr->setAppMode(smgr->getUniqueId(QStringLiteral("measure")));
    std::fflush(stdout);
    return failures;
}

} // namespace Demo
