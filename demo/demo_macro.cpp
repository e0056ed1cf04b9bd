#include "demo_macro.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "zal_errorlog.h"
#include "zal_variant.h"
#include <QFile>
#include <QStringList>
#include <cstdio>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

int playMacro(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::printf("cannot read macro %s\n", fileName.toLocal8Bit().constData());
        return -1;
    }
    int failures = 0;
    int lineNo = 0;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine(8192)).trimmed();
        ++lineNo;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        QStringList fields = line.split(QLatin1Char('|'));
        for (QString &f : fields)
            f = f.trimmed();
        while (fields.size() < 5)
            fields.append(QString());
        const QString name = fields[0], params = fields[1];
        const bool expectOk = fields[2].isEmpty() || fields[2] == QLatin1String("ok");
        QString code;
        ErrorLog log;
        Variant value;
        bool ok = false;
        if (Command *cmd = CommandContainer::getCommand(name))
            ok = MainWindow::main_win->execute(cmd, params, &value, &code, &log);
        else
            code = QStringLiteral("GAPP-0004");
        const QString result = value.toString();
        bool asExpected = ok == expectOk;
        if (!fields[3].isEmpty())
            asExpected = asExpected && code == fields[3];
        if (!fields[4].isEmpty())
            asExpected = asExpected && result == fields[4];
        std::printf("%s %-24s %-28s -> %-6s result '%s' code '%s'%s\n", asExpected ? "ok  " : "FAIL",
                    name.toLocal8Bit().constData(), params.toLocal8Bit().constData(), ok ? "true" : "false",
                    result.toLocal8Bit().constData(), code.toLocal8Bit().constData(),
                    asExpected ? "" : qPrintable(QStringLiteral("   (line %1 expected %2 %3 %4)")
                                                     .arg(lineNo).arg(fields[2], fields[3], fields[4])));
        if (!asExpected) {
            ++failures;
            if (!log.isEmpty())
                std::printf("     log: %s\n", log.getText().toLocal8Bit().constData());
        }
    }
    std::fflush(stdout);
    return failures;
}

} // namespace Demo
