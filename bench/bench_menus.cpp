// A large menu section: 2,000 commands, 40 columns with 1,500 command
// entries, nested sub-menus and partial menus used under other prefixes.
// Measures loading the section and building every column's popup against
// building the same QMenu tree by hand with plain Qt, and one switch between
// two main menus of 20 columns each in a real main window.
#include "bench_util.h"
#include "test_world.h"
#include "gapp_ccontainer.h"
#include "gapp_command.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_menu.h"
#include "gapp_menu_data.h"
#include "gapp_status_mgr.h"
#include "zal_os.h"
#include <QApplication>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QHash>
#include <QMenu>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <vector>

using namespace Zal;
using namespace Zal::GApp;

namespace {

const int GROUPS = 20;
const int PER_GROUP = 100; // 2,000 commands
const int COLUMNS = 40;
const int PARTIALS = 8;
const int PARTIAL_ENTRIES = 12;
const int RUNS = 31;

class BenchCommand : public TestUtil::StubCommand
{
public:
    explicit BenchCommand(const QString &name) : StubCommand(name, false) {}
};

QString commandName(int group, int index)
{
    return QStringLiteral("g%1.c%2").arg(group).arg(index);
}

// The expanded tree of one menu, for the hand-built variant.
struct HandItem
{
    int kind; // 0 command, 1 separator, 2 sub-menu
    QString name;
    std::vector<HandItem> items;
};

// Per column: a sub-menu of 8 entries holding a sub-menu of 4, 13 or 14
// direct entries around two separators, and a partial menu of 12 entries
// renamed into another group: 37 or 38 entries, 1,500 in all.
QByteArray menuSection(std::vector<HandItem> *hand)
{
    QByteArray xml = "<layout><menusection>";
    for (int p = 0; p < PARTIALS; ++p) {
        xml += QStringLiteral("<partial_menu name='part%1' translate_section='bench' prefix='pp.'>").arg(p).toUtf8();
        for (int j = 0; j < PARTIAL_ENTRIES; ++j)
            xml += QStringLiteral("<entry>pp.c%1</entry>").arg(p * PARTIAL_ENTRIES + j).toUtf8();
        xml += "</partial_menu>";
    }
    for (int c = 0; c < COLUMNS; ++c) {
        const int group = c % GROUPS;
        const int renamed = (c + 1) % GROUPS;
        const int part = c % PARTIALS;
        HandItem column{2, QStringLiteral("column%1").arg(c), {}};
        xml += QStringLiteral("<menucolumn name='column%1' translate_section='bench'>").arg(c).toUtf8();
        HandItem sub{2, QStringLiteral("sub"), {}};
        HandItem inner{2, QStringLiteral("inner"), {}};
        xml += "<menu name='sub'>";
        for (int i = 0; i < 8; ++i) {
            xml += "<entry>" + commandName(group, 50 + i).toUtf8() + "</entry>";
            sub.items.push_back({0, commandName(group, 50 + i), {}});
        }
        xml += "<menu name='inner'>";
        for (int i = 0; i < 4; ++i) {
            xml += "<entry>" + commandName(group, 60 + i).toUtf8() + "</entry>";
            inner.items.push_back({0, commandName(group, 60 + i), {}});
        }
        xml += "</menu></menu>";
        sub.items.push_back(inner);
        column.items.push_back(sub);
        const int direct = 13 + c % 2;
        for (int i = 0; i < direct; ++i) {
            if (i == 5 || i == 10) {
                xml += "<sep/>";
                column.items.push_back({1, QString(), {}});
            }
            xml += "<entry>" + commandName(group, i).toUtf8() + "</entry>";
            column.items.push_back({0, commandName(group, i), {}});
        }
        xml += QStringLiteral("<use_partial prefix='g%1.'>part%2</use_partial></menucolumn>")
                   .arg(renamed)
                   .arg(part)
                   .toUtf8();
        for (int j = 0; j < PARTIAL_ENTRIES; ++j)
            column.items.push_back({0, commandName(renamed, part * PARTIAL_ENTRIES + j), {}});
        hand->push_back(column);
    }
    for (int m = 0; m < 2; ++m) {
        xml += QStringLiteral("<menubar name='main%1'>").arg(m).toUtf8();
        for (int c = m * COLUMNS / 2; c < (m + 1) * COLUMNS / 2; ++c)
            xml += QStringLiteral("<column>column%1</column>").arg(c).toUtf8();
        xml += "</menubar>";
    }
    return xml + "</menusection></layout>";
}

void buildByHand(QMenu *menu, const std::vector<HandItem> &items,
                 const QHash<QString, QAction *> &actions)
{
    for (const HandItem &item : items) {
        if (item.kind == 0) {
            menu->addAction(actions.value(item.name));
        } else if (item.kind == 1) {
            menu->addSeparator();
        } else {
            auto *sub = new QMenu(item.name, menu);
            buildByHand(sub, item.items, actions);
            menu->addMenu(sub);
        }
    }
}

void deletePopups()
{
    for (int c = 0; c < COLUMNS; ++c) {
        MenuData *menu = MenuDataContainer::getMenu(QStringLiteral("column%1").arg(c));
        if (menu && menu->hasPopupMenu())
            delete menu->getPopupMenu();
    }
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);

    for (int g = 0; g < GROUPS; ++g)
        for (int i = 0; i < PER_GROUP; ++i)
            new BenchCommand(commandName(g, i));

    std::vector<HandItem> hand;
    const QByteArray xml = menuSection(&hand);
    QDomDocument doc;
    if (!doc.setContent(xml)) {
        std::fprintf(stderr, "bench_menus: invalid menu section\n");
        return 1;
    }

    // Plain Qt: the same tree from a prepared description, with plain actions
    // found by name.
    QHash<QString, QAction *> plainActions;
    std::vector<std::unique_ptr<QAction>> owned;
    for (int g = 0; g < GROUPS; ++g) {
        for (int i = 0; i < PER_GROUP; ++i) {
            owned.push_back(std::make_unique<QAction>(commandName(g, i)));
            plainActions.insert(commandName(g, i), owned.back().get());
        }
    }

    std::vector<double> ours;
    std::vector<double> byHand;
    for (int run = 0; run <= RUNS; ++run) {
        const double t1 = Bench::timeNs([&] {
            MenuDataContainer::loadMenus(&doc);
            for (int c = 0; c < COLUMNS; ++c)
                MenuDataContainer::getMenu(QStringLiteral("column%1").arg(c))->getPopupMenu();
        });
        deletePopups();
        MenuDataContainer::deleteAllMenus();

        std::vector<QMenu *> menus;
        const double t2 = Bench::timeNs([&] {
            for (const HandItem &column : hand) {
                auto *menu = new QMenu(column.name, nullptr);
                buildByHand(menu, column.items, plainActions);
                menus.push_back(menu);
            }
        });
        qDeleteAll(menus);
        if (run > 0) { // the first round warms up both
            ours.push_back(t1);
            byHand.push_back(t2);
        }
    }
    const double oursMs = Bench::median(ours) / 1e6;
    const double handMs = Bench::median(byHand) / 1e6;
    Bench::report("menu_build", oursMs, "ms");
    Bench::report("menu_build_by_hand", handMs, "ms");
    Bench::ratio("menu_build", oursMs / handMs);

    // Main-menu switching needs the window: a private environment whose
    // layout file holds the same section.
    TestUtil::World world(xml);
    if (!world.isValid())
        return 1;

    QStringList args{QStringLiteral("bench_menus")};
    auto *win = new MainWindow("bench", new AppStatusManager, InitLibrary(), args);
    MenuDataContainer::createMainMenu(QStringLiteral("main0"));
    MenuDataContainer::createMainMenu(QStringLiteral("main1"));
    std::vector<double> switches;
    for (int run = 0; run < 2 * RUNS; ++run) {
        const QString target = QStringLiteral("main%1").arg(run % 2);
        switches.push_back(Bench::timeNs([&] { MenuDataContainer::createMainMenu(target); }));
    }
    Bench::report("main_menu_switch_ms", Bench::median(switches) / 1e6, "ms");
    delete win;
    return 0;
}
