#include "gapp_kconfig.h"
#include "gapp_main_area.h"
#include "zal_exception.h"
#include <QLineEdit>
#include <QPointer>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>
#include <functional>

using namespace Zal::MainArea;
using Sizes = QList<QList<int> >;

namespace {

const QRgb FOCUS_COLOR = qRgb(170, 30, 30);

// Pins the splitter handle to 5 pixels, so size arithmetic does not depend
// on the platform style.
class HandleStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        return metric == PM_SplitterWidth ? 5 : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

// A focusable view widget with a size hint the test can change; expanding
// ones may be maximised.
class View : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;
    QSize sizeHint() const override { return hint.isValid() ? hint : QLineEdit::sizeHint(); }
    QSize hint;
};

View *makeView(const char *name, bool expanding = true)
{
    auto *view = new View(QString::fromLatin1(name));
    view->setObjectName(QString::fromLatin1(name));
    view->setSizePolicy(expanding ? QSizePolicy::Expanding : QSizePolicy::Fixed,
                        expanding ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    return view;
}

QString progErrorMessage(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const Zal::ProgError &error) {
        return error.getMessage();
    }
    return QStringLiteral("<no error>");
}

QString configText(const QStringList &keyValues)
{
    KConfig config;
    for (int i = 0; i + 1 < keyValues.size(); i += 2)
        config.writeEntry(keyValues.at(i), keyValues.at(i + 1));
    return config.getConfig();
}

int extentOf(const QSize &size, Qt::Orientation orientation)
{
    return orientation == Qt::Horizontal ? size.width() : size.height();
}

QIcon filledIcon(Qt::GlobalColor color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return QIcon(pixmap);
}

} // namespace

class TestMainArea : public QObject
{
    Q_OBJECT

    HandleStyle _style;

    // a | (b over c), a shown in a window of 1000 x 600.
    struct ThreeGroups
    {
        Area area;
        View *a;
        View *b;
        View *c;
        explicit ThreeGroups(bool bExpands = true)
            : a(makeView("a")), b(makeView("b", bExpands)),
              c(makeView("c", bExpands))
        {
            area.resize(1000, 600);
            Layout layout(&area);
            layout.addWidget(a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
            layout.addWidget(b, QIcon(), QStringLiteral("B"), a, Area::Right, Area::Percent, 40);
            layout.addWidget(c, QIcon(), QStringLiteral("C"), b, Area::Bottom, Area::Percent, 50);
            area.addWidgets(&layout);
        }
        bool exposed() { return QTest::qWaitForWindowExposed(&area); }
    };

private slots:
    // ---- KConfig --------------------------------------------------------
    void kconfigTextFormRoundTrip_data()
    {
        QTest::addColumn<QStringList>("keyValues"); QTest::addColumn<QString>("text");
        QTest::newRow("plain, key order") << QStringList{"b", "2", "a", "1"} << "a|1|b|2";
        QTest::newRow("bars") << QStringList{"k|x", "v|", "|", "||"} << "k\\|x|v\\||\\||\\|\\|";
        QTest::newRow("backslashes") << QStringList{"k", "c:\\d\\", "\\|", ""} << "\\\\\\|||k|c:\\\\d\\\\";
        QTest::newRow("no entries") << QStringList{} << "";
    }
    void kconfigTextFormRoundTrip()
    {
        QFETCH(QStringList, keyValues); QFETCH(QString, text);
        QCOMPARE(configText(keyValues), text);
        KConfig copy;
        copy.setConfig(text);
        for (int i = 0; i < keyValues.size(); i += 2) {
            QString value;
            QVERIFY2(copy.readEntry(keyValues.at(i), &value), qPrintable(keyValues.at(i)));
            QCOMPARE(value, keyValues.at(i + 1));
        }
        QCOMPARE(copy.getConfig(), text);
    }

    void kconfigParse_data()
    {
        QTest::addColumn<QString>("text"); QTest::addColumn<QStringList>("keyValues");
        QTest::newRow("empty") << "" << QStringList{};
        QTest::newRow("partial key dropped") << "a|1|b" << QStringList{"a", "1"};
        QTest::newRow("trailing bar") << "a|1|" << QStringList{"a", "1"};
        QTest::newRow("value to end") << "a|" << QStringList{"a", ""};
        QTest::newRow("later key wins") << "a|1|a|2" << QStringList{"a", "2"};
        QTest::newRow("escaped bar in key") << "a\\|b|c" << QStringList{"a|b", "c"};
        QTest::newRow("lone backslash at end") << "a|x\\" << QStringList{"a", "x"};
        QTest::newRow("no bar at all") << "garbage" << QStringList{};
    }
    void kconfigParse()
    {
        QFETCH(QString, text); QFETCH(QStringList, keyValues);
        KConfig config;
        config.writeEntry(QStringLiteral("old"), QStringLiteral("gone"));
        config.setConfig(text);
        QCOMPARE(config.getConfig(), configText(keyValues));
    }

    void kconfigLists_data()
    {
        QTest::addColumn<QStringList>("items"); QTest::addColumn<char>("sep");
        QTest::addColumn<QString>("text"); QTest::addColumn<QStringList>("expected");
        QTest::newRow("plain") << QStringList{"a", "b"} << ',' << "a,b" << QStringList{"a", "b"};
        const QStringList separators{"a,b", ",", "c,"}, backslashes{"x\\", "\\,", "\\\\"}, other{"a;b", "a,b"};
        QTest::newRow("separators in items") << separators << ',' << "a\\,b,\\,,c\\," << separators;
        QTest::newRow("backslashes") << backslashes << ',' << "x\\\\,\\\\\\,,\\\\\\\\" << backslashes;
        QTest::newRow("other separator") << other << ';' << "a\\;b;a,b" << other;
        QTest::newRow("inner empty item") << QStringList{"a", "", "b"} << ',' << "a,,b" << QStringList{"a", "", "b"};
        QTest::newRow("last empty item lost") << QStringList{"a", ""} << ',' << "a," << QStringList{"a"};
        QTest::newRow("empty list") << QStringList{} << ',' << "" << QStringList{};
    }
    void kconfigLists()
    {
        QFETCH(QStringList, items); QFETCH(char, sep); QFETCH(QString, text); QFETCH(QStringList, expected);
        KConfig config;
        config.writeEntry(QStringLiteral("list"), items, sep);
        QString stored;
        QVERIFY(config.readEntry(QStringLiteral("list"), &stored));
        QCOMPARE(stored, text);
        KConfig reread;
        reread.setConfig(config.getConfig());
        QStringList list{QStringLiteral("stale")};
        int count = -1;
        QVERIFY(reread.readListEntry(QStringLiteral("list"), list, &count, sep));
        QCOMPARE(list, expected);
        QCOMPARE(count, int(expected.size()));
        QVERIFY(!reread.readListEntry(QStringLiteral("absent"), list, &count, sep));
    }

    // Number, flag and point reads of one stored text; "absent" reads a missing key and keeps the output.
    void kconfigTypedReads_data()
    {
        QTest::addColumn<QString>("kind"); QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("answer"); QTest::addColumn<QVariant>("value");
        QTest::newRow("num on") << "num" << "on" << true << QVariant(1);
        QTest::newRow("num yes") << "num" << "yes" << true << QVariant(1);
        QTest::newRow("num true") << "num" << "true" << true << QVariant(1);
        QTest::newRow("num negative") << "num" << "-7" << true << QVariant(-7);
        QTest::newRow("num 12x") << "num" << "12x" << false << QVariant(0);
        QTest::newRow("num On is no keyword") << "num" << "On" << false << QVariant(0);
        QTest::newRow("num absent") << "num" << "absent" << false << QVariant(-99);
        QTest::newRow("bool 1") << "bool" << "1" << true << QVariant(true);
        QTest::newRow("bool on") << "bool" << "on" << true << QVariant(true);
        QTest::newRow("bool yes") << "bool" << "yes" << true << QVariant(true);
        QTest::newRow("bool no") << "bool" << "no" << true << QVariant(false);
        QTest::newRow("bool TRUE") << "bool" << "TRUE" << true << QVariant(false);
        QTest::newRow("bool absent") << "bool" << "absent" << false << QVariant(true);
        QTest::newRow("point") << "point" << "3,-4" << true << QVariant(QPoint(3, -4));
        QTest::newRow("point blank and junk") << "point" << " 5,6px" << true << QVariant(QPoint(5, 6));
        QTest::newRow("point one number") << "point" << "7" << false << QVariant(QPoint(9, 9));
        QTest::newRow("point empty") << "point" << "" << false << QVariant(QPoint(9, 9));
    }
    void kconfigTypedReads()
    {
        QFETCH(QString, kind); QFETCH(QString, text); QFETCH(bool, answer); QFETCH(QVariant, value);
        KConfig config;
        const QString key = text == QLatin1String("absent") ? QStringLiteral("other") : QStringLiteral("k");
        config.writeEntry(QStringLiteral("k"), text);
        if (kind == QLatin1String("num")) {
            int result = -99;
            QCOMPARE(config.readNumEntry(key, &result), answer);
            QCOMPARE(result, value.toInt());
        } else if (kind == QLatin1String("bool")) {
            bool result = true;
            QCOMPARE(config.readBoolEntry(key, &result), answer);
            QCOMPARE(result, value.toBool());
        } else {
            QPoint result(9, 9);
            QCOMPARE(config.readPointEntry(key, &result), answer);
            QCOMPARE(result, value.toPoint());
        }
    }

    void kconfigGroupsAndTypedWrites()
    {
        KConfig config;
        config.setGroup(QStringLiteral("g"));
        config.writeEntry(QStringLiteral("i"), -12);
        config.writeEntry(QStringLiteral("b"), false);
        config.writeEntry(QStringLiteral("p"), QPoint(3, 4));
        config.writeEntry(QStringLiteral("c"), "chars");
        config.setGroup(QString());
        QCOMPARE(config.getConfig(), QStringLiteral("g/b|false|g/c|chars|g/i|-12|g/p|3,4"));
        KConfig copy = config;
        copy.setGroup(QStringLiteral("g"));
        int number = 0;
        QVERIFY(copy.readNumEntry(QStringLiteral("i"), &number));
        QCOMPARE(number, -12);
    }

    // ---- Layout tree ------------------------------------------------------
    void centralWidgetErrors()
    {
        Area area;
        QWidget a, b, c;
        Layout layout(&area);
        layout.addWidget(&a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
        const QString second = QStringLiteral("Not possible to have more than one central widget");
        const auto add = [&](QWidget *to, Area::DockPosition position, int size) {
            return progErrorMessage(
                [&] { layout.addWidget(&b, QIcon(), QString(), to, position, Area::Percent, size); });
        };
        QCOMPARE(add(nullptr, Area::Center, 0), second);
        // Docking to a widget that is not placed makes a central widget too.
        QCOMPARE(add(&c, Area::Right, 50), second);
        QCOMPARE(int(layout.topGroup()->items.size()), 1);
        // An unknown position places nothing.
        layout.addWidget(&b, QIcon(), QString(), &a, Area::DockPosition(3), Area::Percent, 50);
        QVERIFY(!layout.topRow());
        Layout docked(&area);
        docked.addWidget(&a, QIcon(), QString(), &b, Area::Bottom, Area::Percent, 50);
        QCOMPARE(docked.topGroup()->items.front().widget, &a);
        Layout empty(&area);
        QCOMPARE(progErrorMessage([&] { area.addWidgets(&empty); }), QStringLiteral("Invalid layout"));
    }

    void splitSizes_data()
    {
        QTest::addColumn<int>("position"); QTest::addColumn<int>("spec"); QTest::addColumn<int>("size");
        QTest::addColumn<int>("first");  // for Characters: in "X" widths, else pixels
        QTest::addColumn<int>("second"); // likewise; -1 means "the rest"
        QTest::newRow("right 30 %") << int(Area::Right) << int(Area::Percent) << 30 << 298 << 696;
        QTest::newRow("bottom 50 %") << int(Area::Bottom) << int(Area::Percent) << 50 << 297 << 297;
        QTest::newRow("right 100 %") << int(Area::Right) << int(Area::Percent) << 100 << 995 << 0;
        QTest::newRow("bottom 0 chars") << int(Area::Bottom) << int(Area::Characters) << 0 << -1 << 0;
        QTest::newRow("right 10 chars") << int(Area::Right) << int(Area::Characters) << 10 << 10 << -1;
        QTest::newRow("right -4 chars") << int(Area::Right) << int(Area::Characters) << -4 << -1 << 4;
    }
    void splitSizes()
    {
        QFETCH(int, position); QFETCH(int, spec); QFETCH(int, size); QFETCH(int, first); QFETCH(int, second);
        Area area;
        area.setStyle(&_style);
        area.resize(1000, 600);
        QWidget a, b;
        Layout layout(&area);
        QCOMPARE(layout.handleWidth(), 5);
        layout.addWidget(&a, QIcon(), QString(), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(&b, QIcon(), QString(), &a, Area::DockPosition(position), Area::PositionSpec(spec), size);
        const LayoutRow *row = layout.topRow();
        QVERIFY(row && !layout.topGroup());
        const Qt::Orientation orientation = position == Area::Right ? Qt::Horizontal : Qt::Vertical;
        QCOMPARE(row->orientation, orientation);
        const int length = extentOf(QSize(1000, 600), orientation) - 5;
        if (spec == Area::Characters) {
            const int x = QFontMetrics(area.font()).horizontalAdvance(QLatin1Char('X'));
            first = first < 0 ? length - second * x : first * x;
            second = second < 0 ? length - first : second * x;
        }
        QCOMPARE(extentOf(row->first_size, orientation), first);
        QCOMPARE(extentOf(row->second_size, orientation), second);
        QCOMPARE(row->first_default_size, row->first_size);
        QCOMPARE(row->second_default_size, row->second_size);
        // Across the split the whole extent is kept.
        const Qt::Orientation across = orientation == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal;
        QCOMPARE(extentOf(row->second_size, across), extentOf(QSize(1000, 600), across));
        QCOMPARE(row->first_group->items.front().widget, &a);
        QCOMPARE(row->second_group->items.front().widget, &b);
    }

    // ---- Realised area -----------------------------------------------------
    void realisedTree()
    {
        Area area;
        area.resize(800, 500);
        QWidget *a = makeView("a"), *b = makeView("b"), *c = makeView("c");
        Layout layout(&area);
        layout.addWidget(a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(b, filledIcon(Qt::blue), QStringLiteral("B tip"), a, Area::Center, Area::Percent, 0);
        layout.addWidget(c, QIcon(), QString(), a, Area::Right, Area::Percent, 50);
        layout.topRow()->first_group->raised_widget = b;
        area.addWidgets(&layout);
        QCOMPARE(area.managedWidgets(), (QList<QWidget *>{a, b, c}));
        auto *root = qobject_cast<Splitter *>(area.rootWidget());
        QVERIFY(root);
        auto *left = qobject_cast<TabWidget *>(root->widget(0));
        auto *right = qobject_cast<TabWidget *>(root->widget(1));
        QVERIFY(left && right);
        QCOMPARE(left->pages()->objectName(), QStringLiteral("main area tabwidget pages"));
        QCOMPARE(left->currentPage(), b);
        QCOMPARE(left->tabBar()->currentIndex(), 1);
        // An icon tab shows no text; the label is its tool tip.
        QCOMPARE(left->tabBar()->tabText(1), QString());
        QCOMPARE(left->tabBar()->tabToolTip(1), QStringLiteral("B tip"));
        QCOMPARE(area.tabLabel(a), QStringLiteral("A"));
        QVERIFY(area.tabLabel(&area).isNull());
        // A single page without label and icon has no tab bar.
        QVERIFY(right->tabBar()->isHidden());
        QVERIFY(!left->tabBar()->isHidden());
        QCOMPARE(root->defaultSizes(), (QList<int>{(800 - layout.handleWidth()) / 2,
                                                   (800 - layout.handleWidth()) / 2}));
        QCOMPARE(progErrorMessage([&] { area.addWidgets(&layout); }),
                 QStringLiteral("There are already children"));
    }

    void detachKeepsWidgetsDeleteDestroysThem()
    {
        ThreeGroups g;
        QPointer<QWidget> a = g.a;
        // Deleting a placed widget behind the area's back is an error.
        QCOMPARE(progErrorMessage([&] { emit g.b->destroyed(g.b); }),
                 QStringLiteral("Widget was destroyed while still in main area"));
        g.area.detachWidgets();
        QCOMPARE(progErrorMessage([&] { emit g.b->destroyed(g.b); }), QStringLiteral("<no error>"));
        QVERIFY(!g.area.rootWidget());
        QVERIFY(g.area.managedWidgets().isEmpty());
        QVERIFY(a && !a->parent() && a->isHidden());
        QVERIFY(g.area.findChildren<TabWidget *>().isEmpty());
        // The detached widgets can be placed again.
        Layout layout(&g.area);
        layout.addWidget(g.a, QIcon(), QString(), nullptr, Area::Center, Area::Percent, 0);
        g.area.addWidgets(&layout);
        QCOMPARE(g.area.widgetFor(g.a), g.a);
        delete g.b;
        delete g.c;
        g.area.deleteWidgets();
        QVERIFY(!a);
        QVERIFY(!g.area.rootWidget());
    }

    void raiseLowerAndWidgetFor()
    {
        Area area;
        QWidget *a = makeView("a"), *b = makeView("b"), *c = makeView("c"), *single = makeView("s");
        auto *inner = new QLineEdit(b);
        Layout layout(&area);
        layout.addWidget(a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(b, QIcon(), QStringLiteral("B"), a, Area::Center, Area::Percent, 0);
        layout.addWidget(c, QIcon(), QStringLiteral("C"), a, Area::Center, Area::Percent, 0);
        layout.addWidget(single, QIcon(), QStringLiteral("S"), a, Area::Bottom, Area::Percent, 50);
        area.addWidgets(&layout);
        auto *group = qobject_cast<TabWidget *>(qobject_cast<Splitter *>(area.rootWidget())->widget(0));
        QCOMPARE(group->currentPage(), a);
        QCOMPARE(area.widgetFor(inner), b);
        QCOMPARE(area.widgetFor(&area), nullptr);
        area.raiseWidget(c);
        QCOMPARE(group->currentPage(), c);
        QCOMPARE(group->tabBar()->currentIndex(), 2);
        area.lowerWidget(b); // not the current page
        QCOMPARE(group->currentPage(), c);
        area.lowerWidget(c); // previous page
        QCOMPARE(group->currentPage(), b);
        area.raiseWidget(a);
        area.lowerWidget(a); // the first page gives way to the second
        QCOMPARE(group->currentPage(), b);
        QCOMPARE(group->tabBar()->currentIndex(), 1);
        area.lowerWidget(single); // nothing to show instead
        QCOMPARE(area.raisedWidgets(), (QList<QWidget *>{b, single}));
    }

    void focusMovesBetweenGroups()
    {
        ThreeGroups g;
        auto *inner = new QLineEdit(g.b);
        inner->show();
        g.area.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&g.area));
        auto *root = qobject_cast<Splitter *>(g.area.rootWidget());
        auto *groupA = qobject_cast<TabWidget *>(root->widget(0));
        auto *groupB = qobject_cast<TabWidget *>(qobject_cast<Splitter *>(root->widget(1))->widget(0));
        g.c->setFocus();
        QTRY_VERIFY(g.c->hasFocus());
        QSignalSpy selected(&g.area, &Area::widgetSelected);
        g.a->setFocus();
        QTRY_COMPARE(selected.count(), 1);
        QCOMPARE(selected.at(0).at(0).value<QWidget *>(), g.a);
        QVERIFY(groupA->isActive() && groupA->tabBar()->isActive());
        QVERIFY(!groupB->isActive());
        inner->setFocus(); // inside page b: the page is named
        QTRY_COMPARE(selected.count(), 2);
        QCOMPARE(selected.at(1).at(0).value<QWidget *>(), g.b);
        QCOMPARE(g.area.selectedWidget(), g.b);
        QVERIFY(!groupA->isActive() && !groupA->tabBar()->isActive());
        QVERIFY(groupB->isActive() && groupB->tabBar()->isActive());
    }

    void activeGroupIsPaintedInFocusColour()
    {
        Area area;
        QWidget *a = makeView("a"), *b = makeView("b");
        Layout layout(&area);
        layout.addWidget(a, QIcon(), QString(), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(b, QIcon(), QStringLiteral("B"), a, Area::Right, Area::Percent, 50);
        area.resize(600, 300);
        area.addWidgets(&layout);
        area.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&area));
        auto *root = qobject_cast<Splitter *>(area.rootWidget());
        auto *untabbed = qobject_cast<TabWidget *>(root->widget(0));
        auto *tabbed = qobject_cast<TabWidget *>(root->widget(1));
        const QRgb dark = untabbed->palette().color(QPalette::Dark).rgb();
        const auto pixel = [](QWidget *widget, int x, int y) { return widget->grab().toImage().pixel(x, y); };
        a->setFocus();
        QTRY_VERIFY(untabbed->isActive());
        QCOMPARE(pixel(untabbed, 0, 0), FOCUS_COLOR);
        const QRect tab = tabbed->tabBar()->tabRect(0);
        QCOMPARE(pixel(tabbed->tabBar(), tab.right(), 1), dark);
        b->setFocus();
        QTRY_VERIFY(tabbed->isActive());
        QCOMPARE(pixel(untabbed, 0, 0), dark);
        QCOMPARE(pixel(tabbed->tabBar(), tab.right(), 1), FOCUS_COLOR);
        QCOMPARE(pixel(tabbed, tabbed->width() - 1, tabbed->height() - 1), FOCUS_COLOR);
    }

    void tabClickShowsAndFocusesPage()
    {
        Area area;
        QWidget *a = makeView("a"), *b = makeView("b");
        Layout layout(&area);
        layout.addWidget(a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(b, QIcon(), QStringLiteral("B"), a, Area::Center, Area::Percent, 0);
        area.resize(400, 300);
        area.addWidgets(&layout);
        area.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&area));
        auto *group = qobject_cast<TabWidget *>(area.rootWidget());
        QSignalSpy pages(group, &TabWidget::currentChanged);
        QSignalSpy mouse(group->tabBar(), &TabBar::mouseSelected);
        QSignalSpy selected(&area, &Area::widgetSelected);
        QTest::mouseClick(group->tabBar(), Qt::LeftButton, {}, group->tabBar()->tabRect(1).center());
        QCOMPARE(group->currentPage(), b);
        QCOMPARE(pages.count(), 1);
        QCOMPARE(pages.at(0).at(0).value<QWidget *>(), b);
        QCOMPARE(mouse.count(), 1);
        QCOMPARE(mouse.at(0).at(0).toInt(), 1);
        QTRY_VERIFY(b->hasFocus());
        QVERIFY(selected.count() >= 1);
        QCOMPARE(selected.last().at(0).value<QWidget *>(), b);
        // A right click neither selects nor moves the focus.
        QTest::mouseClick(group->tabBar(), Qt::RightButton, {}, group->tabBar()->tabRect(0).center());
        QCOMPARE(mouse.count(), 1);
        QVERIFY(b->hasFocus());
    }

    void visibilityOfPagesIsReported()
    {
        ThreeGroups g;
        QVERIFY(g.exposed());
        QSignalSpy visibility(&g.area, &Area::widgetVisibilityChanged);
        g.b->hide();
        QCOMPARE(visibility.count(), 1);
        QCOMPARE(visibility.at(0).at(0).value<QWidget *>(), g.b);
        g.b->show();
        QCOMPARE(visibility.count(), 2);
        // Widgets inside a page are not pages.
        auto *inner = new QLineEdit(g.b);
        inner->show();
        inner->hide();
        QCOMPARE(visibility.count(), 2);
        // Hiding a whole group hides its current page.
        qobject_cast<Splitter *>(g.area.rootWidget())->widget(0)->hide();
        QCOMPARE(visibility.count(), 3);
        QCOMPARE(visibility.at(2).at(0).value<QWidget *>(), g.a);
    }

    void tabBarGeometry()
    {
        Area area;
        QWidget *a = makeView("a");
        Layout layout(&area);
        layout.addWidget(a, filledIcon(Qt::red), QString(), nullptr, Area::Center, Area::Percent, 0);
        for (int i = 0; i < 30; ++i)
            layout.addWidget(makeView(QByteArray::number(i).constData()), QIcon(), QStringLiteral("a long tab label"),
                             a, Area::Center, Area::Percent, 0);
        area.resize(500, 200);
        area.addWidgets(&layout);
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        TabBar *bar = qobject_cast<TabWidget *>(area.rootWidget())->tabBar();
        const QList<QToolButton *> buttons = bar->findChildren<QToolButton *>();
        QCOMPARE(buttons.size(), 2);
        QTRY_VERIFY(buttons.at(0)->isVisible());
        for (QToolButton *button : buttons) {
            QCOMPARE(button->y(), 0);
            QCOMPARE(button->height(), bar->height() - 1);
        }
        QCOMPARE(bar->tabsEnd(), buttons.at(0)->x());
        QCOMPARE(bar->minimumSizeHint(), QSize(2 * buttons.at(0)->width() + 20, bar->height()));
    }

    void tabWidthWithIcons()
    {
        struct OurBar : TabBar
        {
            using TabBar::TabBar;
            using TabBar::tabSizeHint;
        };
        struct PlainBar : QTabBar
        {
            using QTabBar::tabSizeHint;
        };
        OurBar ours(nullptr);
        PlainBar plain;
        for (QTabBar *bar : {static_cast<QTabBar *>(&ours), static_cast<QTabBar *>(&plain)}) {
            bar->addTab(filledIcon(Qt::red), QString());
            bar->addTab(QStringLiteral("text"));
        }
        QCOMPARE(ours.tabSizeHint(0), plain.tabSizeHint(0) - QSize(8, 0));
        QCOMPARE(ours.tabSizeHint(1), plain.tabSizeHint(1));
    }

    void sizeNegotiation()
    {
        ThreeGroups g(false);
        QVERIFY(g.exposed());
        auto *root = qobject_cast<Splitter *>(g.area.rootWidget());
        auto *right = qobject_cast<Splitter *>(root->widget(1));
        QTRY_COMPARE(right->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(right->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(root->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        // Only the group of a expands along the root, so only it stretches.
        QCOMPARE(root->widget(0)->sizePolicy().horizontalStretch(), 1);
        QCOMPARE(right->sizePolicy().horizontalStretch(), 0);
        QCOMPARE(root->widget(0)->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        // A page that grows its hint grows its group's hint.
        g.b->hint = QSize(700, 20);
        g.b->updateGeometry();
        QTRY_COMPARE(right->widget(0)->sizeHint(), QSize(700, 20));
        QTRY_VERIFY(right->sizeHint().width() >= 700);
    }

    void maximiseRefusedWhenFirstSplitterDoesNotExpand()
    {
        ThreeGroups g(false);
        QVERIFY(g.exposed());
        auto *root = qobject_cast<Splitter *>(g.area.rootWidget());
        QTRY_COMPARE(root->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        const Sizes before = g.area.splitterSizes();
        QVERIFY(g.area.isMaximizable(g.a));
        QVERIFY(!g.area.isMaximizable(g.b));
        QVERIFY(!g.area.isMaximizable(&g.area));
        g.area.maximizeWidget(g.a);
        QVERIFY(!g.area.isMaximized());
        QVERIFY(root->widget(1)->isVisible());
        QCOMPARE(g.area.splitterSizes(), before);
    }

    void unmaximiseRestoresExactSizes()
    {
        ThreeGroups g;
        QVERIFY(g.exposed());
        auto *root = qobject_cast<Splitter *>(g.area.rootWidget());
        QTRY_COMPARE(root->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        const Sizes defaults = g.area.splitterSizes();
        const int available = root->width() - root->handleWidth();
        // 40 % of the width less the handle, as the layout computed them.
        QCOMPARE(root->defaultSizes(), (QList<int>{available * 40 / 100, available * 60 / 100}));
        g.area.setSplitterSizes(Sizes{{333, available - 333}, {111, 600 - root->handleWidth() - 111}});
        const Sizes before = g.area.splitterSizes();
        const QString state = g.area.saveStateToString();
        QCOMPARE(before.first(), (QList<int>{333, available - 333}));
        g.area.maximizeWidget(g.c);
        QVERIFY(g.area.isMaximized());
        QVERIFY(!root->widget(0)->isVisible());
        QVERIFY(g.c->isVisible());
        QVERIFY(!g.b->isVisible());
        // Saving now keeps the arrangement from before.
        QCOMPARE(g.area.saveStateToString(), state);
        g.area.maximizeWidget(g.a); // already maximised
        QVERIFY(!g.a->isVisible());
        g.area.unmaximizeWidget();
        QVERIFY(!g.area.isMaximized());
        QVERIFY(g.a->isVisible() && g.b->isVisible());
        QCOMPARE(g.area.splitterSizes(), before);
        QCoreApplication::processEvents();
        QCOMPARE(g.area.splitterSizes(), before);
        g.area.restoreDefaultSplitterSizes();
        QCOMPARE(g.area.splitterSizes(), defaults);
    }

    // ---- State strings ------------------------------------------------------
    void saveRestoreSaveGivesSameString()
    {
        ThreeGroups g;
        QWidget *extra = makeView("extra");
        QVERIFY(g.exposed());
        auto *root = qobject_cast<Splitter *>(g.area.rootWidget());
        const int width = root->width() - root->handleWidth() - 420;
        const int height = root->height() - root->handleWidth() - 150;
        g.area.setSplitterSizes(Sizes{{420, width}, {150, height}});
        const QString saved = g.area.saveStateToString();
        QCOMPARE(saved, QStringLiteral("ShownPages|a,b,c|SplitterSizes|420 %1 ,150 %2 |Version|3").arg(width).arg(height));
        g.area.detachWidgets();
        // The same arrangement from its definition, with the saved state.
        Layout layout(&g.area);
        layout.addWidget(g.a, QIcon(), QStringLiteral("A"), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(g.b, QIcon(), QStringLiteral("B"), g.a, Area::Right, Area::Percent, 40);
        layout.addWidget(extra, QIcon(), QStringLiteral("E"), g.b, Area::Center, Area::Percent, 0);
        layout.addWidget(g.c, QIcon(), QStringLiteral("C"), g.b, Area::Bottom, Area::Percent, 50);
        QString withExtra = saved;
        withExtra.replace(QStringLiteral("a,b,c"), QStringLiteral("a,extra,c"));
        layout.restoreStateFromString(withExtra);
        QCOMPARE(layout.topRow()->second_row->first_group->raised_widget, extra);
        g.area.addWidgets(&layout);
        QCoreApplication::processEvents();
        QCOMPARE(g.area.saveStateToString(), withExtra);
    }

    void restoreIntoTree_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<Sizes>("expected"); // top row, its first row, its second row
        QTest::addColumn<QString>("raised");
        const Sizes defaults{{298, 696}, {297, 297}, {595, 0}};
        QTest::newRow("all rows") << "SplitterSizes|100 200 ,30 40 ,5 6 |Version|3"
                                  << Sizes{{100, 200}, {30, 40}, {5, 6}} << "";
        QTest::newRow("version 2 ignored") << "ShownPages|e|SplitterSizes|100 200 |Version|2" << defaults << "";
        QTest::newRow("no version") << "ShownPages|e|SplitterSizes|100 200 " << defaults << "";
        QTest::newRow("bad item ends its branch only")
            << "SplitterSizes|100 200 ,x,5 6 |Version|3" << Sizes{{100, 200}, {297, 297}, {5, 6}} << "";
        QTest::newRow("bad top item ends all") << "SplitterSizes|1 2 3,30 40 ,5 6 |Version|3" << defaults << "";
        QTest::newRow("items run out") << "SplitterSizes|100 200 |Version|3"
                                       << Sizes{{100, 200}, {297, 297}, {595, 0}} << "";
        QTest::newRow("extra spaces and no numbers")
            << "SplitterSizes|  7   x ,8 9|Version|3" << Sizes{{7, 0}, {8, 9}, {595, 0}} << "";
        QTest::newRow("huge numbers") << "SplitterSizes|99999999999 -5 |Version|3"
                                      << Sizes{{0, -5}, {297, 297}, {595, 0}} << "";
        QTest::newRow("last matching page wins") << "ShownPages|c,zz,e|Version|3" << defaults << "e";
        QTest::newRow("not the last item") << "ShownPages|e,c,a|Version|3" << defaults << "c";
        QTest::newRow("escaped rubbish") << "\\|\\\\|Version|3|ShownPages|\\" << defaults << "";
        QTest::newRow("empty") << "" << defaults << "";
    }

    // Tree: (a over (c, e)) | (b over d), restored into before realising.
    void restoreIntoTree()
    {
        QFETCH(QString, state); QFETCH(Sizes, expected); QFETCH(QString, raised);
        Area area;
        area.setStyle(&_style);
        area.resize(1000, 600);
        QWidget a, b, c, d, e;
        const std::pair<QWidget *, const char *> names[] = {{&a, "a"}, {&b, "b"}, {&c, "c"}, {&d, "d"}, {&e, "e"}};
        for (const auto &[widget, name] : names)
            widget->setObjectName(QString::fromLatin1(name));
        Layout layout(&area);
        layout.addWidget(&a, QIcon(), QString(), nullptr, Area::Center, Area::Percent, 0);
        layout.addWidget(&b, QIcon(), QString(), &a, Area::Right, Area::Percent, 30);
        layout.addWidget(&c, QIcon(), QString(), &a, Area::Bottom, Area::Percent, 50);
        layout.addWidget(&e, QIcon(), QString(), &c, Area::Center, Area::Percent, 0);
        layout.addWidget(&d, QIcon(), QString(), &b, Area::Bottom, Area::Percent, 100);
        layout.restoreStateFromString(state);
        const LayoutRow *top = layout.topRow();
        const LayoutRow *left = top->first_row;
        const LayoutRow *right = top->second_row;
        QVERIFY(left && right);
        const auto sizesOf = [](const LayoutRow *row) {
            return QList<int>{extentOf(row->first_size, row->orientation),
                              extentOf(row->second_size, row->orientation)};
        };
        QCOMPARE(sizesOf(top), expected.at(0));
        QCOMPARE(sizesOf(left), expected.at(1));
        QCOMPARE(sizesOf(right), expected.at(2));
        QCOMPARE(extentOf(top->first_default_size, Qt::Horizontal), 298);
        QCOMPARE(extentOf(right->second_default_size, Qt::Vertical), 0);
        const QWidget *raisedWidget = left->second_group->raised_widget;
        QCOMPARE(raisedWidget ? raisedWidget->objectName() : QString(), raised);
    }

    void restoreIntoSingleGroupTakesNothing()
    {
        Area area;
        QWidget a;
        a.setObjectName(QStringLiteral("a"));
        Layout layout(&area);
        layout.addWidget(&a, QIcon(), QString(), nullptr, Area::Center, Area::Percent, 0);
        layout.restoreStateFromString(QStringLiteral("ShownPages|a|Version|3"));
        QCOMPARE(layout.topGroup()->raised_widget, nullptr);
    }
};

QTEST_MAIN(TestMainArea)
#include "tst_mainarea.moc"
