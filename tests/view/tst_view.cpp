#include "gapp_config_keys_p.h"
#include "gapp_container_widget.h"
#include "gapp_init.h"
#include "gapp_main_area.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "gapp_vcontainer.h"
#include "gapp_view.h"
#include "gapp_view_widget.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_exception.h"
#include "test_util.h"
#include <QDomDocument>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QStyle>
#include <QtTest>
#include <functional>
#include <map>
#include <memory>

using namespace Zal;
using namespace Zal::GApp;

namespace {

class TestCreator : public ViewWidgetCreator
{
public:
    explicit TestCreator(const QString &name)
        : ViewWidgetCreator(name, name.toUpper(), nullptr), _width(name.at(0).unicode() - 'a')
    {
    }
    QWidget *createWidget(QWidget *parent) override
    {
        ++created;
        // Later letters are wider.
        auto *label = new QLabel(QString(_width, QLatin1Char('x')), parent);
        label->setFocusPolicy(Qt::StrongFocus);
        return label;
    }
    int created = 0;

private:
    int _width;
};

// V: a and c are tabs of the left group, d is below them, b on the right.
// T shows a and d only; W is another view; X holds the container.
const QByteArray VIEWS =
    "<view name='V'><widget name='a' pos='top' size='100' maximizable='yes'/>"
    "<widget name='b' dock='a' pos='right' size='70'/>"
    "<widget name='c' dock='a' pos='center' size='100' maximizable='yes'/>"
    "<widget name='d' dock='a' pos='bottom' size='80%' maximizable='yes'/></view>"
    "<template name='T' parent='V'><widget>a</widget><widget>d</widget></template>"
    "<view name='W'><widget name='e' pos='center' size='100'/><widget name='b' dock='e' pos='right' size='5c'/></view>"
    "<view name='X'><widget name='box' pos='top' size='100'/></view>";

QByteArray layoutFile(const QByteArray &views = VIEWS)
{
    return "<layout><viewsection>" + views + "</viewsection></layout>";
}

// Creators and a main window on the layout file; the window deletes the
// creators with the library's static data.
struct Session
{
    explicit Session(bool extraWidget = false)
    {
        for (const char *name : {"a", "b", "c", "d", "e", "p", "q"})
            creators[name] = new TestCreator(QString::fromLatin1(name));
        box = new ContainerWidgetCreator(QStringLiteral("box"), QStringLiteral("Box"), nullptr, {"p", "q"});
        if (extraWidget)
            new TestCreator(QStringLiteral("z"));
        QStringList args{QStringLiteral("prog")};
        win.reset(new MainWindow("view test", new AppStatusManager, InitLibrary(), args));
    }

    QWidget *widget(const char *name) { return ViewWidgetContainer::getWidget(QString::fromLatin1(name)); }
    QString state(const char *view) const
    {
        for (const auto &pair : ViewContainer::getView(QString::fromLatin1(view))->getNames()) {
            if (pair.first == QLatin1String(view))
                return pair.second;
        }
        return QStringLiteral("missing");
    }
    CfgArray<QString> *configArray() const { return MainWindow::cfg->getArray<QString>(ZalString(CfgKeys::MAIN_AREA)); }

    std::map<QString, TestCreator *> creators;
    ContainerWidgetCreator *box = nullptr;
    std::unique_ptr<MainWindow> win;
};

void expectProgError(const std::function<void()> &fn, const QString &function, const QString &file,
                     const QString &message)
{
    try {
        fn();
        QFAIL("no ProgError");
    } catch (const ProgError &e) {
        QCOMPARE(e.getMessage(), message);
        QCOMPARE(e.getFunction(), function);
        QCOMPARE(e.getFile(), file);
    }
}

void loadSection(const QByteArray &section)
{
    QDomDocument doc;
    QVERIFY(doc.setContent("<layout><viewsection>" + section + "</viewsection></layout>"));
    ViewContainer::loadAllViews(&doc);
}

// What a switch writes with the views debug flag.
QByteArray tracedSwitch(const char *view)
{
    MainWindow::debug_views = true;
    const QByteArray out = TestUtil::captureStdout([&] { ViewContainer::setView(QString::fromLatin1(view)); });
    MainWindow::debug_views = false;
    return out;
}

void focusIn(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusIn);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

class TestView : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        ViewContainer::deleteAllViews();
        ViewWidgetContainer::setActiveView(QString());
    }

    // --- view widget registry -------------------------------------------------

    void creatorsAndWidgetsComeAndGo()
    {
        TestCreator first(QStringLiteral("a"));
        expectProgError([] { TestCreator second(QStringLiteral("a")); },
                        "Zal::GApp::ViewWidgetContainer::registerCreator", "gapp_view_widget",
                        "view name 'a' does already exist");
        QCOMPARE(ViewWidgetContainer::getCreator(QStringLiteral("a")), &first);
        QVERIFY(!ViewWidgetContainer::getWidget(QStringLiteral("a")) && first.created == 0);
        QVERIFY(!ViewWidgetContainer::createWidget(nullptr, QStringLiteral("nope")));
        std::unique_ptr<QWidget> w1(ViewWidgetContainer::createWidget(nullptr, QStringLiteral("a")));
        std::unique_ptr<QWidget> w2(ViewWidgetContainer::createWidget(nullptr, QStringLiteral("a")));
        QCOMPARE(w2->objectName(), QStringLiteral("a"));
        QVERIFY(w1 != w2); // never reused
        QCOMPARE(ViewWidgetContainer::getName(w2.get()), QStringLiteral("a"));
        w2.reset();
        QVERIFY(!ViewWidgetContainer::getWidget(QStringLiteral("a")));
        QVERIFY(!ViewWidgetContainer::isViewVisible(QStringLiteral("a")));
        delete new TestCreator(QStringLiteral("g"));
        QVERIFY(!ViewWidgetContainer::getCreator(QStringLiteral("g")));
    }

    void registryErrors_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const char *const ops[] = {"getWidget", "getDisplayName", "getDisplayPixmap", "isViewVisible",
                                   "ensureViewVisible", "lowerWidgetInTabView", "maximizeWidget"};
        for (int i = 0; i < 7; ++i)
            QTest::newRow(ops[i]) << i << QString::fromLatin1(ops[i]) << "view name 'nope' does not exist";
        QTest::newRow("getName(widget)") << 7 << "getName" << "view widget does not exist";
        QTest::newRow("getName(creator)") << 8 << "getName" << "view creator does not exist";
        QTest::newRow("unregisterCreator") << 9 << "unregisterCreator" << "the view widget creator ist not registered.";
    }
    void registryErrors()
    {
        QFETCH(int, op);
        QFETCH(QString, function);
        QFETCH(QString, message);
        const QString name = QStringLiteral("nope");
        TestCreator creator(QStringLiteral("a"));
        QWidget stranger;
        if (op >= 8)
            ViewWidgetContainer::unregisterCreator(&creator);
        expectProgError(
            [&] {
                switch (op) {
                case 0: ViewWidgetContainer::getWidget(name); break;
                case 1: ViewWidgetContainer::getDisplayName(name); break;
                case 2: ViewWidgetContainer::getDisplayPixmap(name); break;
                case 3: ViewWidgetContainer::isViewVisible(name); break;
                case 4: ViewWidgetContainer::ensureViewVisible(name, true); break;
                case 5: ViewWidgetContainer::lowerWidgetInTabView(name); break;
                case 6: ViewWidgetContainer::maximizeWidget(name); break;
                case 7: ViewWidgetContainer::getName(&stranger); break;
                case 8: ViewWidgetContainer::getName(&creator); break;
                case 9: ViewWidgetContainer::unregisterCreator(&creator); break;
                }
            },
            "Zal::GApp::ViewWidgetContainer::" + function, "gapp_view_widget", message);
        if (op >= 8)
            ViewWidgetContainer::registerCreator(QStringLiteral("a"), &creator);
    }

    void setActiveViewFlags_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("onlyIfRegistered");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("updates");
        QTest::newRow("registered with widget") << "b" << true << false << "b" << 1;
        QTest::newRow("unregistered, only if registered") << "zz" << true << false << "a" << 0;
        QTest::newRow("unregistered clears") << "zz" << false << false << "" << 1;
        QTest::newRow("registered without widget") << "e" << false << false << "a" << 0;
        QTest::newRow("drawing locked") << "b" << false << true << "b" << 0;
    }
    void setActiveViewFlags()
    {
        QFETCH(QString, name);
        QFETCH(bool, onlyIfRegistered);
        QFETCH(bool, locked);
        QFETCH(QString, expected);
        QFETCH(int, updates);
        TestUtil::Environment env(layoutFile());
        Session s;
        ViewContainer::setView(QStringLiteral("V"));
        ViewWidgetContainer::setActiveView(QStringLiteral("a"), true);
        QSignalSpy spy(s.win.get(), &MainWindow::setMenuSensitiveSignal);
        if (locked)
            s.win->lockDrawing();
        ViewWidgetContainer::setActiveView(name, onlyIfRegistered);
        QCOMPARE(ViewWidgetContainer::getActiveView(), expected);
        QCOMPARE(spy.count(), updates);
        if (locked)
            s.win->unlockDrawing();
    }

    void deleteAllWidgetsSparesOnlyProtectedWidgetsOutsideTheArea()
    {
        TestUtil::Environment env(layoutFile());
        Session s;
        ViewContainer::setView(QStringLiteral("V"));
        ViewContainer::setView(QStringLiteral("T")); // b and c leave the area
        for (const char *name : {"a", "b", "d"})
            s.creators[name]->setDeleteAllowed(false);
        QPointer<QWidget> a = s.widget("a"), b = s.widget("b"), c = s.widget("c"), d = s.widget("d");
        ViewWidgetContainer::setActiveView(QStringLiteral("a"));
        ViewWidgetContainer::deleteAllWidgets();
        QVERIFY(!a && !d && !c);
        QCOMPARE(s.widget("b"), b.data());
        QCOMPARE(ViewWidgetContainer::getActiveView(), QString());
        delete b.data();
        QVERIFY(!s.widget("b"));
    }

    // --- view section ---------------------------------------------------------

    void viewSectionErrors_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("message");
        const QByteArray v = "<view name='V'><widget name='a' pos='top' size='100'/></view>";
        const QByteArray w = "<view name='V'><widget name='a' ";
        const QString all = "ViewContainer::loadAllViews", normal = "ViewContainer::loadNormalView",
                      tmpl = "ViewContainer::loadTemplateView";
        QTest::newRow("comment in section") << QByteArray("<!-- x -->") << all << "element is null";
        QTest::newRow("unknown tag") << QByteArray("<views/>") << all << "unknown tag: views";
        QTest::newRow("view without name") << QByteArray("<view/>") << normal << "invalid view name";
        QTest::newRow("duplicate view") << v + v << normal << "duplicated view name: 'V'";
        QTest::newRow("comment in view") << QByteArray("<view name='V'><!-- x --></view>") << normal
                                         << "element is null";
        QTest::newRow("tag in view") << QByteArray("<view name='V'><template/></view>") << normal << "invalid tag name";
        QTest::newRow("top with dock") << w + "pos='top' size='1'/><widget name='b' dock='a' pos='top' size='1'/>"
                                              "</view>"
                                       << normal << "invalid dock position for 'b': 'top'";
        for (const char *size : {"101", "x", "", "-1c"})
            QTest::newRow(size) << w + "pos='center' size='" + size + "'/></view>" << normal << "invalid dock size";
        QTest::newRow("unknown widget") << QByteArray("<view name='V'><widget name='zz' pos='top' size='1'/></view>")
                                        << normal << "invalid view widget name: zz";
        QTest::newRow("unknown dock") << w + "dock='zz' pos='right' size='1'/></view>" << normal
                                      << "invalid view widget dock name: zz";
        QTest::newRow("template without name") << v + "<template parent='V'/>" << tmpl << "invalid view name";
        QTest::newRow("duplicate template") << v + "<template name='V' parent='V'/>" << tmpl
                                            << "duplicated view name: V";
        QTest::newRow("template without parent") << v + "<template name='T'/>" << tmpl << "invalid parent view name";
        QTest::newRow("parent defined later") << "<template name='T' parent='V'/>" + v << tmpl
                                              << "missing parent view name: V";
        QTest::newRow("comment in template") << v + "<template name='T' parent='V'><!-- x --></template>" << tmpl
                                             << "element is null";
        QTest::newRow("template of a foreign widget") << v + "<template name='T' parent='V'><widget>b</widget>"
                                                             "</template>"
                                                      << "View::addTemplateWidget" << "cannot add b to template T";
    }
    void viewSectionErrors()
    {
        QFETCH(QByteArray, section);
        QFETCH(QString, function);
        QFETCH(QString, message);
        TestCreator a(QStringLiteral("a")), b(QStringLiteral("b"));
        expectProgError([&] { loadSection(section); }, "Zal::GApp::" + function,
                        function.startsWith("View::") ? "gapp_view" : "gapp_vcontainer", message);
    }

    // The dock side keeps a percentage of the width less the handle, or a
    // number of "X" widths.
    void dockSizes_data()
    {
        QTest::addColumn<QByteArray>("size");
        QTest::addColumn<int>("percent");
        QTest::addColumn<int>("characters");
        QTest::newRow("100") << QByteArray("100") << 100 << 0;
        QTest::newRow("100%") << QByteArray("100%") << 100 << 0;
        QTest::newRow("5c") << QByteArray("5c") << 0 << 5;
    }
    void dockSizes()
    {
        QFETCH(QByteArray, size);
        QFETCH(int, percent);
        QFETCH(int, characters);
        TestUtil::Environment env(layoutFile("<view name='S'><widget name='a' pos='top' size='100'/>"
                                             "<widget name='b' dock='a' pos='right' size='" + size + "'/></view>"));
        Session s;
        MainArea::Area *area = MainWindow::main_area;
        const int length = area->width() - area->style()->pixelMetric(QStyle::PM_SplitterWidth, nullptr, area);
        const int x = area->fontMetrics().horizontalAdvance(QLatin1Char('X'));
        ViewContainer::setView(QStringLiteral("S"));
        auto *splitter = qobject_cast<MainArea::Splitter *>(area->rootWidget());
        QVERIFY(splitter);
        QCOMPARE(splitter->defaultSizes().first(), characters ? x * characters : length * percent / 100);
    }

    // --- switching views ------------------------------------------------------

    void templateSwitchKeepsWidgetsAndViewSwitchReplacesThem()
    {
        TestUtil::Environment env(layoutFile());
        Session s;
        ViewContainer::setView(QStringLiteral("V"));
        QPointer<QWidget> a = s.widget("a"), b = s.widget("b");
        QCOMPARE(tracedSwitch("T"), QByteArray("create layout 'T'\ncreate layout 'T' end\n"));
        QCOMPARE(ViewContainer::getActualView(), QStringLiteral("T"));
        QCOMPARE(MainWindow::main_area->managedWidgets(), QList<QWidget *>({a.data(), s.widget("d")}));
        QVERIFY(b && !b->parent() && !b->isVisible());
        ViewContainer::setView(QStringLiteral("V"));
        QCOMPARE(s.widget("b"), b.data());
        for (const char *name : {"a", "b", "c", "d"})
            QCOMPARE(s.creators[name]->created, 1);
        QCOMPARE(tracedSwitch("W"), QByteArray("create layout 'W'\n"
                                                "Creating view widget 'e'\nCreating view widget 'e' ok\n"
                                                "Creating view widget 'b'\nCreating view widget 'b' ok\n"
                                                "create layout 'W' end\n"));
        QVERIFY(!a && !b && !s.widget("c"));
        QCOMPARE(s.creators["b"]->created, 2);
        // Into a template from another view: every widget of its view is
        // made, also those that the template does not show.
        ViewContainer::setView(QStringLiteral("T"));
        QVERIFY(s.widget("c") && !s.widget("c")->isVisible());
        expectProgError([] { ViewContainer::setView(QStringLiteral("none")); }, "Zal::GApp::ViewContainer::setView",
                        "gapp_vcontainer", "invalid view name :'none'");
    }

    void firstDisplayStoresDefaultAndReturnRestoresUserArrangement()
    {
        TestUtil::Environment env(layoutFile());
        Session s;
        QVERIFY(s.state("V").isEmpty());
        ViewContainer::setView(QStringLiteral("V"));
        const QString initial = s.state("V");
        QVERIFY(initial.contains(QLatin1String("ShownPages|a,d,b|")));
        QCOMPARE(initial, MainWindow::main_area->saveStateToString());
        MainWindow::main_area->raiseWidget(s.widget("c"));
        ViewContainer::setView(QStringLiteral("V")); // shown already: saves nothing
        QCOMPARE(s.state("V"), initial);
        ViewContainer::setView(QStringLiteral("W"));
        QVERIFY(s.state("V").contains(QLatin1String("ShownPages|c,d,b|")));
        ViewContainer::setView(QStringLiteral("V"));
        QCOMPARE(MainWindow::main_area->raisedWidgetsAsStringList(), QStringList({"c", "d", "b"}));
        s.win->exitProgram();
        QCOMPARE(ViewContainer::getActualView(), QString());
        QVERIFY(!s.widget("a"));
    }

    void activeViewFollowsFocusAndTakesItAfterRebuild()
    {
        TestUtil::Environment env(layoutFile());
        Session s;
        ViewContainer::setView(QStringLiteral("V"));
        focusIn(s.widget("d"));
        QCOMPARE(ViewWidgetContainer::getActiveView(), QStringLiteral("d"));
        ViewContainer::setView(QStringLiteral("T"));
        QCOMPARE(s.win->focusWidget(), s.widget("d"));
    }

    // --- persistence ----------------------------------------------------------

    void saveAndLoadConfig_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<bool>("kept");
        QTest::newRow("unchanged") << -1 << "" << true;
        QTest::newRow("other version") << 0 << "V4" << false;
        QTest::newRow("view marker") << 9 << "NEXT" << false;
        QTest::newRow("entry of first view") << 10 << "aa" << false;
        QTest::newRow("entry of last view") << 27 << "boxx" << false;
        QTest::newRow("name of last view") << 28 << "Y" << false;
        QTest::newRow("truncated") << 30 << "" << false;
    }
    void saveAndLoadConfig()
    {
        QFETCH(int, index);
        QFETCH(QString, replacement);
        QFETCH(bool, kept);
        TestUtil::Environment env(layoutFile());
        Session s;
        ViewContainer::setView(QStringLiteral("X"));
        ViewContainer::saveConfig(); // the shown view saves its live state
        std::vector<QString> values = s.configArray()->getValues();
        QCOMPARE(values, std::vector<QString>({"V5", "a", "b", "box", "c", "d", "e", "p", "q",
                                               "NEXT_VIEW", "a", "b", "c", "d", "V", "", "", "T", "", "",
                                               "NEXT_VIEW", "e", "b", "W", "", "",
                                               "NEXT_VIEW", "box", "X",
                                               MainWindow::main_area->saveStateToString(), ""}));
        values[29] = QStringLiteral("stored");
        if (index == 30)
            values.pop_back();
        else if (index >= 0)
            values[size_t(index)] = replacement;
        ViewContainer::hideView(); // X keeps another, non-empty state
        s.configArray()->setArray(values);
        ViewContainer::loadConfig();
        QCOMPARE(s.state("X"), kept ? QStringLiteral("stored") : QString());
    }

    void restartRestoresUserArrangement_data()
    {
        QTest::addColumn<bool>("extraWidget");
        QTest::addColumn<QStringList>("pages");
        QTest::newRow("same widgets") << false << QStringList({"c", "d", "b"});
        QTest::newRow("one more widget") << true << QStringList({"a", "d", "b"});
    }
    void restartRestoresUserArrangement()
    {
        QFETCH(bool, extraWidget);
        QFETCH(QStringList, pages);
        TestUtil::Environment env(layoutFile());
        {
            Session s;
            ViewContainer::setView(QStringLiteral("V"));
            MainWindow::main_area->raiseWidget(s.widget("c"));
        }
        Session s(extraWidget);
        ViewContainer::setView(QStringLiteral("V"));
        QCOMPARE(MainWindow::main_area->raisedWidgetsAsStringList(), pages);
    }

    // --- container widgets ----------------------------------------------------

    void containerShowsActualWidget()
    {
        TestUtil::Environment env(layoutFile());
        Session s;
        s.box->setActualWidget(QStringLiteral("q")); // before the container exists
        QVERIFY(!s.box->getActualWidget());
        ViewContainer::setView(QStringLiteral("X"));
        auto *box = qobject_cast<ContainerWidget *>(s.widget("box"));
        QVERIFY(box);
        QCOMPARE(box->currentWidget(), s.widget("q"));
        QCOMPARE(s.box->getActualWidget(), s.widget("q"));
        s.box->setActualWidget(QStringLiteral("p"));
        QCOMPARE(box->getCurrentWidget(), s.widget("p"));
        QCOMPARE(box->minimumSizeHint(), s.widget("q")->minimumSizeHint()); // q is hidden but wider
        focusIn(s.widget("p")); // the active view is the inner widget shown
        QCOMPARE(ViewWidgetContainer::getActiveView(), QStringLiteral("p"));
        expectProgError([&] { box->showWidget(2); }, "Zal::GApp::ContainerWidget::showWidget", "gapp_container_widget",
                        "Index is too high");
        expectProgError([&] { box->getWidget(2); }, "Zal::GApp::ContainerWidget::getWidget", "gapp_container_widget",
                        "Index is too high!");
        expectProgError([&] { s.box->setActualWidget(QStringLiteral("r")); },
                        "Zal::GApp::ContainerWidgetCreator::setActualWidget", "gapp_container_widget",
                        "cannot set widget with name 'r'");
        QCOMPARE(box->getCurrentWidget(), s.widget("p"));
        ViewContainer::hideView();
        for (const char *name : {"box", "p", "q"})
            QVERIFY(!s.widget(name));
    }
};

QTEST_MAIN(TestView)
#include "tst_view.moc"
