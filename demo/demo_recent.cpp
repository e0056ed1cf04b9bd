#include "demo_recent.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "gapp_menu.h"
#include "zal_parse.h"
#include "zal_translate.h"
#include <QFileInfo>

namespace Demo {
using namespace Zal::GApp;

RecentFilesProvider *RecentFilesProvider::instance()
{
    static RecentFilesProvider provider;
    return &provider;
}

void RecentFilesProvider::addFile(const QString &fileName)
{
    const QString file = QFileInfo(fileName).absoluteFilePath();
    _files.removeAll(file);
    _files.prepend(file);
    while (_files.size() > 8)
        _files.removeLast();
}

QString RecentFilesProvider::getMenuTitle() const
{
    return Zal::translate("DemoMenu", "Recent files");
}

void RecentFilesProvider::fillMenu(Menu *menu)
{
    for (int i = 0; i < _files.size(); ++i) {
        const QString file = _files.at(i);
        QAction *action = menu->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(QFileInfo(file).fileName()));
        action->setToolTip(file);
        connect(action, &QAction::triggered, this, [file] {
            Command *open = CommandContainer::getCommand(QStringLiteral("file.open"));
            if (open && MainWindow::main_win)
                MainWindow::main_win->execute(open, Zal::Parse::createString(QStringLiteral("file"), file));
        });
    }
}

} // namespace Demo
