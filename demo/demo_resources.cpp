#include "demo_resources.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_documentation.h"
#include "gapp_icon_set.h"
#include "gapp_main_window.h"
#include "gapp_view_widget.h"
#include "zal_errorlog.h"
#include <QCoreApplication>
#include <QIcon>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <cstdio>

using namespace Zal;
using namespace Zal::GApp;

namespace Demo {

namespace {

int failures = 0;

void check(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok  " : "FAIL", what.toLocal8Bit().constData());
    std::fflush(stdout);
    failures += ok ? 0 : 1;
}

// The user's distance icon: a red ruler on a transparent square.
QPixmap distanceIcon()
{
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.fillRect(1, 6, 14, 4, QColor(200, 30, 30));
    for (int x = 2; x < 15; x += 3)
        p.fillRect(x, 6, 1, 2, Qt::white);
    return QPixmap::fromImage(image);
}

QImage pixels(const QIcon *icon)
{
    return icon ? icon->pixmap(16, 16).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied) : QImage();
}

// What a help browser would show for the widget: the identifier of the
// widget or of the nearest parent that has one.
QString helpIdFor(QWidget *widget)
{
    for (QWidget *w = widget; w; w = w->parentWidget()) {
        const QString id = Documentation::getId(w);
        if (!id.isEmpty())
            return id;
    }
    return QString();
}

void checkUserIcon()
{
    const QString name = QStringLiteral("meas.distance");
    Command *cmd = CommandContainer::getCommand(name);
    CommandAction *action = CommandContainer::getCommandAction(name);
    if (!cmd || !action) {
        check(false, QStringLiteral("meas.distance exists"));
        return;
    }
    IconSetContainer::setIcon(name, distanceIcon());
    const QIcon *user = IconSetContainer::getIconSet(name);
    check(user && cmd->getIconSet() == user && !cmd->isDefaultIconSet()
              && action->icon().cacheKey() == user->cacheKey(),
          QStringLiteral("meas.distance shows the user's icon, and so does its action"));
    const QImage expected = pixels(user);

    ErrorLog log;
    const bool saved = IconSetContainer::saveStandard(&log);
    IconSetContainer::deleteAllIconSets();
    const bool ownAgain = !IconSetContainer::getIconSet(name) && cmd->getIconSet();
    const bool loaded = IconSetContainer::loadStandard(&log);
    const QIcon *back = IconSetContainer::getIconSet(name);
    check(saved && ownAgain && loaded && back && pixels(back) == expected
              && action->icon().cacheKey() == back->cacheKey(),
          QStringLiteral("the .icons file gives meas.distance its icon back") + log.getText());
}

void checkHelpIds(MainWindow *window)
{
    // Widgets made from now on get their identifiers from the creators; the
    // ones that exist already are bound here.
    const struct
    {
        const char *view;
        const char *id;
    } views[] = {{"view3d", "demo-view3d"}, {"elements", "demo-elements"}, {"log", "demo-log"}};
    bool bound = true;
    for (const auto &v : views) {
        const QString name = QString::fromLatin1(v.view);
        ViewWidgetCreator *creator = ViewWidgetContainer::getCreator(name);
        if (!creator) {
            bound = false;
            continue;
        }
        creator->setHelpId(QString::fromLatin1(v.id));
        if (QWidget *widget = creator->getWidget())
            Documentation::registerId(widget, QString::fromLatin1(v.id));
        bound = bound && (!creator->getWidget()
                          || Documentation::getId(creator->getWidget()) == QString::fromLatin1(v.id));
    }
    check(bound, QStringLiteral("the views carry their help identifiers"));

    // One menu entry: "open" in the File menu.
    QMenu *file = nullptr;
    for (QAction *a : window->menuBar()->actions())
        if (a->menu() && a->text().remove(QLatin1Char('&')) == QStringLiteral("File"))
            file = a->menu();
    QAction *open = CommandContainer::getCommandAction(QStringLiteral("file.open"));
    const bool inMenu = file && open && file->actions().contains(open);
    if (inMenu)
        Documentation::registerMenuId(file, open, QStringLiteral("demo-file-open"));
    check(inMenu && Documentation::getMenuId(file, open) == QStringLiteral("demo-file-open"),
          QStringLiteral("File > Open carries its help identifier"));

    // F1 on the element list reaches its identifier.
    QString asked;
    auto help = QObject::connect(window, &MainWindow::helpRequestedSignal,
                                 [&asked](QWidget *w) { asked = helpIdFor(w); });
    if (QWidget *elements = ViewWidgetContainer::getWidget(QStringLiteral("elements"))) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
        QCoreApplication::sendEvent(elements, &press);
    }
    QObject::disconnect(help);
    check(asked == QStringLiteral("demo-elements"), QStringLiteral("F1 on the element list asks for ") + asked);
}

} // namespace

int checkResources(MainWindow *window)
{
    failures = 0;
    checkUserIcon();
    checkHelpIds(window);
    return failures;
}

} // namespace Demo
