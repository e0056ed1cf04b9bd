#include "gapp_application.h"
#include "gapp_style.h"
#include <QComboBox>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QStatusBar>
#include <QStyleOption>
#include <QTableView>
#include <QToolTip>
#include <QtTest>
#include <memory>

using namespace Zal::GApp;

Q_DECLARE_METATYPE(QPalette::ColorGroup)
Q_DECLARE_METATYPE(QPalette::ColorRole)
Q_DECLARE_METATYPE(QStyle::PixelMetric)
Q_DECLARE_METATYPE(QStyle::StyleHint)
Q_DECLARE_METATYPE(QStyle::StandardPixmap)
Q_DECLARE_METATYPE(QStyle::SubControl)

namespace {

const QRgb SENTINEL = qRgb(255, 0, 255);

RynStyle *rynStyle()
{
    return qobject_cast<RynStyle *>(QApplication::style());
}

QImage blankImage(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(SENTINEL);
    return image;
}

int countPixels(const QImage &image, QRgb color)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += image.pixel(x, y) == color;
    return n;
}

int countDark(const QImage &image)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = image.pixel(x, y);
            n += qAlpha(c) > 200 && qRed(c) < 70 && qGreen(c) < 70 && qBlue(c) < 70;
        }
    return n;
}

bool changed(const QImage &image)
{
    return countPixels(image, SENTINEL) != image.width() * image.height();
}

QColor grey(int level)
{
    return QColor(level, level, level);
}

// ---- Every element the style draws itself, each with an option of its kind.

enum OptionKind { Plain, Button, Tab, Progress, MenuItem, Header, SizeGrip, Combo, Spin, Slider, ScrollBar,
                  ToolButton, TitleBar, Complex, Frame, Focus };
enum ElementKind { Primitive, Control, ComplexControl };

struct Element
{
    const char *name;
    ElementKind kind;
    uint element;
    OptionKind option;
    int variant;
    QSize size;
    QStyle::State extra;
    bool drawsNothing;
};

const Element ELEMENTS[] = {
    {"CE_PushButton", Control, QStyle::CE_PushButton, Button, 0, {80, 26}, {}, false},
    {"CE_PushButton default with menu", Control, QStyle::CE_PushButton, Button, 1, {80, 26}, {}, false},
    {"CE_PushButtonBevel", Control, QStyle::CE_PushButtonBevel, Button, 1, {80, 26}, {}, false},
    {"CE_PushButtonLabel", Control, QStyle::CE_PushButtonLabel, Button, 0, {80, 26}, {}, false},
    {"CE_TabBarTabShape north", Control, QStyle::CE_TabBarTabShape, Tab, QTabBar::RoundedNorth, {70, 22}, {}, false},
    {"CE_TabBarTabShape south", Control, QStyle::CE_TabBarTabShape, Tab, QTabBar::RoundedSouth, {70, 22}, {}, false},
    {"CE_TabBarTabShape west", Control, QStyle::CE_TabBarTabShape, Tab, QTabBar::RoundedWest, {22, 70}, {}, false},
    {"CE_TabBarTabShape east", Control, QStyle::CE_TabBarTabShape, Tab, QTabBar::RoundedEast, {22, 70}, {}, false},
    {"CE_ProgressBarGroove", Control, QStyle::CE_ProgressBarGroove, Progress, 0, {100, 20}, QStyle::State_Horizontal, false},
    {"CE_ProgressBarContents", Control, QStyle::CE_ProgressBarContents, Progress, 0, {100, 20}, QStyle::State_Horizontal, false},
    {"CE_ProgressBarContents busy", Control, QStyle::CE_ProgressBarContents, Progress, 1, {100, 20}, QStyle::State_Horizontal, false},
    {"CE_ProgressBarContents vertical inverted", Control, QStyle::CE_ProgressBarContents, Progress, 2, {20, 100}, {}, false},
    {"CE_MenuItem with shortcut", Control, QStyle::CE_MenuItem, MenuItem, 0, {150, 22}, {}, false},
    {"CE_MenuItem sub-menu", Control, QStyle::CE_MenuItem, MenuItem, 1, {150, 22}, {}, false},
    {"CE_MenuItem separator", Control, QStyle::CE_MenuItem, MenuItem, 2, {150, 6}, {}, false},
    {"CE_MenuItem exclusive", Control, QStyle::CE_MenuItem, MenuItem, 3, {150, 22}, {}, false},
    {"CE_MenuItem icon checked", Control, QStyle::CE_MenuItem, MenuItem, 4, {150, 22}, {}, false},
    {"CE_MenuItem scroller", Control, QStyle::CE_MenuItem, MenuItem, 5, {150, 12}, {}, false},
    {"CE_MenuTearoff", Control, QStyle::CE_MenuTearoff, Plain, 0, {150, 8}, {}, false},
    {"CE_MenuBarItem", Control, QStyle::CE_MenuBarItem, MenuItem, 0, {50, 22}, {}, false},
    {"CE_MenuBarEmptyArea", Control, QStyle::CE_MenuBarEmptyArea, Plain, 0, {50, 22}, {}, false},
    {"CE_HeaderSection", Control, QStyle::CE_HeaderSection, Header, 0, {80, 22}, {}, false},
    {"CE_HeaderLabel", Control, QStyle::CE_HeaderLabel, Header, 1, {80, 22}, {}, false},
    {"CE_SizeGrip bottom right", Control, QStyle::CE_SizeGrip, SizeGrip, Qt::BottomRightCorner, {16, 16}, {}, false},
    {"CE_SizeGrip top left", Control, QStyle::CE_SizeGrip, SizeGrip, Qt::TopLeftCorner, {16, 16}, {}, false},
    {"CE_Splitter", Control, QStyle::CE_Splitter, Plain, 0, {3, 60}, QStyle::State_Horizontal, false},
    {"CE_ComboBoxLabel", Control, QStyle::CE_ComboBoxLabel, Combo, 1, {120, 20}, {}, false},
    {"CC_SpinBox", ComplexControl, QStyle::CC_SpinBox, Spin, 0, {80, 22}, {}, false},
    {"CC_SpinBox plus minus", ComplexControl, QStyle::CC_SpinBox, Spin, 1, {80, 22}, {}, false},
    {"CC_ComboBox", ComplexControl, QStyle::CC_ComboBox, Combo, 0, {120, 20}, {}, false},
    {"CC_ComboBox editable", ComplexControl, QStyle::CC_ComboBox, Combo, 2, {120, 20}, {}, false},
    {"CC_ScrollBar horizontal", ComplexControl, QStyle::CC_ScrollBar, ScrollBar, Qt::Horizontal, {120, 16}, {}, false},
    {"CC_ScrollBar vertical", ComplexControl, QStyle::CC_ScrollBar, ScrollBar, Qt::Vertical, {16, 120}, {}, false},
    {"CC_Slider horizontal", ComplexControl, QStyle::CC_Slider, Slider, Qt::Horizontal, {120, 30}, {}, false},
    {"CC_Slider vertical", ComplexControl, QStyle::CC_Slider, Slider, Qt::Vertical, {30, 120}, {}, false},
    {"CC_ToolButton", ComplexControl, QStyle::CC_ToolButton, ToolButton, 0, {30, 28}, {}, false},
    {"CC_ToolButton delayed menu", ComplexControl, QStyle::CC_ToolButton, ToolButton, 1, {30, 28}, {}, false},
    {"CC_ToolButton menu button auto-raise", ComplexControl, QStyle::CC_ToolButton, ToolButton, 2, {44, 28}, {}, false},
    {"CC_TitleBar", ComplexControl, QStyle::CC_TitleBar, TitleBar, 0, {200, 22}, {}, false},
    {"CC_ExtendBox", ComplexControl, RynStyle::CC_ExtendBox, Complex, 0, {120, 20}, {}, false},
    {"PE_Frame", Primitive, QStyle::PE_Frame, Frame, 0, {40, 30}, {}, false},
    {"PE_FrameMenu", Primitive, QStyle::PE_FrameMenu, Frame, 0, {40, 30}, {}, false},
    {"PE_FrameTabWidget", Primitive, QStyle::PE_FrameTabWidget, Frame, 0, {40, 30}, {}, false},
    {"PE_FrameWindow", Primitive, QStyle::PE_FrameWindow, Frame, 0, {40, 30}, {}, false},
    {"PE_PanelToolBar", Primitive, QStyle::PE_PanelToolBar, Plain, 0, {40, 30}, {}, false},
    {"PE_FrameStatusBarItem", Primitive, QStyle::PE_FrameStatusBarItem, Plain, 0, {40, 30}, {}, true},
    {"PE_FrameDefaultButton", Primitive, QStyle::PE_FrameDefaultButton, Button, 0, {40, 30}, {}, false},
    {"PE_FrameDockWidget", Primitive, QStyle::PE_FrameDockWidget, Frame, 0, {40, 30}, {}, false},
    {"PE_FrameFocusRect", Primitive, QStyle::PE_FrameFocusRect, Focus, 0, {40, 30}, {}, false},
    {"PE_FrameLineEdit", Primitive, QStyle::PE_FrameLineEdit, Frame, 0, {40, 30}, {}, false},
    {"PE_PanelButtonCommand", Primitive, QStyle::PE_PanelButtonCommand, Button, 0, {40, 30}, {}, false},
    {"PE_PanelButtonTool", Primitive, QStyle::PE_PanelButtonTool, Plain, 0, {40, 30}, {}, false},
    {"PE_IndicatorArrowDown", Primitive, QStyle::PE_IndicatorArrowDown, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorArrowLeft", Primitive, QStyle::PE_IndicatorArrowLeft, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorArrowRight", Primitive, QStyle::PE_IndicatorArrowRight, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorArrowUp", Primitive, QStyle::PE_IndicatorArrowUp, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorBranch", Primitive, QStyle::PE_IndicatorBranch, Plain, 0, {16, 16}, QStyle::State_Children, false},
    {"PE_IndicatorBranch leaf", Primitive, QStyle::PE_IndicatorBranch, Plain, 0, {16, 16}, {}, true},
    {"PE_IndicatorItemViewItemCheck", Primitive, QStyle::PE_IndicatorItemViewItemCheck, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorCheckBox", Primitive, QStyle::PE_IndicatorCheckBox, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorHeaderArrow", Primitive, QStyle::PE_IndicatorHeaderArrow, Header, 2, {16, 16}, {}, false},
    {"PE_IndicatorProgressChunk", Primitive, QStyle::PE_IndicatorProgressChunk, Plain, 0, {10, 16}, {}, false},
    {"PE_IndicatorRadioButton", Primitive, QStyle::PE_IndicatorRadioButton, Plain, 0, {16, 16}, {}, false},
    {"PE_IndicatorToolBarHandle", Primitive, QStyle::PE_IndicatorToolBarHandle, Plain, 0, {8, 30}, QStyle::State_Horizontal, false},
    {"PE_IndicatorToolBarSeparator", Primitive, QStyle::PE_IndicatorToolBarSeparator, Plain, 0, {8, 30}, QStyle::State_Horizontal, false},
    {"PE_IndicatorTabTear", Primitive, QStyle::PE_IndicatorTabTear, Plain, 0, {8, 30}, {}, false},
    {"PE_PanelScrollAreaCorner", Primitive, QStyle::PE_PanelScrollAreaCorner, Plain, 0, {16, 16}, {}, false},
};

QIcon redIcon()
{
    QPixmap pm(16, 16);
    pm.fill(Qt::red);
    return QIcon(pm);
}

std::unique_ptr<QStyleOption> makeOption(const Element &e)
{
    switch (e.option) {
    case Button: {
        auto o = std::make_unique<QStyleOptionButton>();
        o->text = QStringLiteral("OK");
        if (e.variant == 1) {
            o->features = QStyleOptionButton::DefaultButton | QStyleOptionButton::HasMenu;
            o->icon = redIcon();
            o->iconSize = QSize(16, 16);
        }
        return o;
    }
    case Tab: {
        auto o = std::make_unique<QStyleOptionTab>();
        o->shape = QTabBar::Shape(e.variant);
        o->text = QStringLiteral("Tab");
        return o;
    }
    case Progress: {
        auto o = std::make_unique<QStyleOptionProgressBar>();
        o->minimum = 0;
        o->maximum = e.variant == 1 ? 0 : 100;
        o->progress = 40;
        o->invertedAppearance = e.variant == 2;
        return o;
    }
    case MenuItem: {
        auto o = std::make_unique<QStyleOptionMenuItem>();
        o->text = QStringLiteral("&Open\tCtrl+O");
        o->maxIconWidth = 16;
        o->menuItemType = e.variant == 1   ? QStyleOptionMenuItem::SubMenu
                          : e.variant == 2 ? QStyleOptionMenuItem::Separator
                          : e.variant == 5 ? QStyleOptionMenuItem::Scroller
                                           : QStyleOptionMenuItem::Normal;
        if (e.variant == 3 || e.variant == 4) {
            o->checkType = e.variant == 3 ? QStyleOptionMenuItem::Exclusive : QStyleOptionMenuItem::NonExclusive;
            o->checked = true;
        }
        if (e.variant == 4)
            o->icon = redIcon();
        return o;
    }
    case Header: {
        auto o = std::make_unique<QStyleOptionHeader>();
        o->text = QStringLiteral("x");
        if (e.variant == 1)
            o->icon = redIcon();
        o->sortIndicator = e.variant == 2 ? QStyleOptionHeader::SortDown : QStyleOptionHeader::None;
        return o;
    }
    case SizeGrip: {
        auto o = std::make_unique<QStyleOptionSizeGrip>();
        o->corner = Qt::Corner(e.variant);
        return o;
    }
    case Combo: {
        auto o = std::make_unique<QStyleOptionComboBox>();
        o->currentText = QStringLiteral("Item");
        o->editable = e.variant == 2;
        if (e.variant == 1)
            o->currentIcon = redIcon();
        return o;
    }
    case Spin: {
        auto o = std::make_unique<QStyleOptionSpinBox>();
        o->buttonSymbols = e.variant == 1 ? QAbstractSpinBox::PlusMinus : QAbstractSpinBox::UpDownArrows;
        o->stepEnabled = QAbstractSpinBox::StepUpEnabled;
        o->frame = true;
        return o;
    }
    case Slider:
    case ScrollBar: {
        auto o = std::make_unique<QStyleOptionSlider>();
        o->orientation = Qt::Orientation(e.variant);
        o->minimum = 0;
        o->maximum = 100;
        o->sliderPosition = o->sliderValue = 30;
        o->pageStep = 10;
        o->singleStep = 1;
        o->tickPosition = QSlider::TicksBothSides;
        o->tickInterval = 20;
        return o;
    }
    case ToolButton: {
        auto o = std::make_unique<QStyleOptionToolButton>();
        o->icon = redIcon();
        o->iconSize = QSize(16, 16);
        o->toolButtonStyle = Qt::ToolButtonIconOnly;
        if (e.variant == 1)
            o->features = QStyleOptionToolButton::HasMenu | QStyleOptionToolButton::PopupDelay;
        if (e.variant == 2) {
            o->features = QStyleOptionToolButton::HasMenu | QStyleOptionToolButton::MenuButtonPopup;
            o->subControls |= QStyle::SC_ToolButtonMenu;
        }
        return o;
    }
    case TitleBar: {
        auto o = std::make_unique<QStyleOptionTitleBar>();
        o->text = QStringLiteral("A window");
        o->titleBarFlags = Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint
                           | Qt::WindowContextHelpButtonHint;
        o->titleBarState = QStyle::State_Active;
        o->icon = redIcon();
        return o;
    }
    case Complex:
        return std::make_unique<QStyleOptionComplex>();
    case Frame: {
        auto o = std::make_unique<QStyleOptionFrame>();
        o->lineWidth = 1;
        return o;
    }
    case Focus:
        return std::make_unique<QStyleOptionFocusRect>();
    case Plain:
        break;
    }
    return std::make_unique<QStyleOption>();
}

void draw(QStyle *style, const Element &e, const QStyleOption *option, QPainter *painter)
{
    switch (e.kind) {
    case Primitive:
        style->drawPrimitive(QStyle::PrimitiveElement(e.element), option, painter);
        break;
    case Control:
        style->drawControl(QStyle::ControlElement(e.element), option, painter);
        break;
    case ComplexControl:
        style->drawComplexControl(QStyle::ComplexControl(e.element),
                                  static_cast<const QStyleOptionComplex *>(option), painter);
        break;
    }
}

// Draws `element` with the given state onto a sentinel image.
QImage render(QStyle *style, QStyle::PrimitiveElement element, QStyle::State state, QSize size = QSize(30, 20))
{
    QImage image = blankImage(size);
    QStyleOption option;
    option.rect = image.rect();
    option.palette = style->standardPalette();
    option.state = state;
    QPainter p(&image);
    style->drawPrimitive(element, &option, &p);
    return image;
}

} // namespace

class TestStyle : public QObject
{
    Q_OBJECT

private slots:
    void applicationInstallsTheStyle()
    {
        QVERIFY(rynStyle());
        QCOMPARE(RynStyle::focus_color, QColor(170, 30, 30, 255));
        QCOMPARE(int(RynStyle::CC_ExtendBox), int(QStyle::CC_CustomBase));
        // Polishing the application put the palettes in place.
        QCOMPARE(QApplication::palette().color(QPalette::Window), grey(210));
        QCOMPARE(QApplication::palette("QMenuBar").color(QPalette::Window), grey(180));
        QCOMPARE(QApplication::palette("QToolBar").color(QPalette::Button), grey(180));
        QCOMPARE(QApplication::palette("QStatusBar").color(QPalette::Window), grey(180));
        QCOMPARE(QApplication::palette("QAbstractItemView").color(QPalette::Base), grey(210));
        QCOMPARE(QToolTip::palette().color(QPalette::Base), grey(240));
        QVERIFY(!QApplication::desktopSettingsAware());
    }

    void palettes_data()
    {
        QTest::addColumn<QString>("palette");
        QTest::addColumn<QPalette::ColorGroup>("group");
        QTest::addColumn<QPalette::ColorRole>("role");
        QTest::addColumn<QColor>("color");
        const QColor text(49, 49, 49);
        const QColor highlight(170, 100, 100);
        const auto row = [](const char *name, const char *palette, QPalette::ColorGroup g, QPalette::ColorRole r,
                            const QColor &c) { QTest::newRow(name) << QString::fromLatin1(palette) << g << r << c; };
        row("standard window", "standard", QPalette::Active, QPalette::Window, grey(210));
        row("standard button", "standard", QPalette::Inactive, QPalette::Button, grey(210));
        row("standard base", "standard", QPalette::Active, QPalette::Base, grey(240));
        row("standard alternate base", "standard", QPalette::Active, QPalette::AlternateBase, grey(240));
        row("standard window text", "standard", QPalette::Active, QPalette::WindowText, text);
        row("standard text", "standard", QPalette::Inactive, QPalette::Text, text);
        row("standard button text", "standard", QPalette::Active, QPalette::ButtonText, text);
        row("standard highlight", "standard", QPalette::Active, QPalette::Highlight, highlight);
        row("standard highlighted text", "standard", QPalette::Active, QPalette::HighlightedText, grey(240));
        row("standard bright text", "standard", QPalette::Active, QPalette::BrightText, grey(240));
        row("standard link", "standard", QPalette::Active, QPalette::Link, RynStyle::focus_color);
        row("standard visited link", "standard", QPalette::Active, QPalette::LinkVisited, RynStyle::focus_color);
        row("standard light", "standard", QPalette::Active, QPalette::Light, grey(240));
        row("standard mid", "standard", QPalette::Active, QPalette::Mid, grey(180));
        row("standard shadow", "standard", QPalette::Active, QPalette::Shadow, grey(150));
        row("standard dark", "standard", QPalette::Disabled, QPalette::Dark, grey(112));
        row("standard disabled window text", "standard", QPalette::Disabled, QPalette::WindowText, grey(150));
        row("standard disabled text", "standard", QPalette::Disabled, QPalette::Text, grey(150));
        row("standard disabled button text", "standard", QPalette::Disabled, QPalette::ButtonText, grey(150));
        row("standard disabled highlighted text", "standard", QPalette::Disabled, QPalette::HighlightedText,
            grey(150));
        row("standard disabled window", "standard", QPalette::Disabled, QPalette::Window, grey(210));
        row("standard unset role shows green", "standard", QPalette::Active, QPalette::Midlight, QColor(0, 255, 0));
        row("standard tool tip base", "standard", QPalette::Active, QPalette::ToolTipBase, grey(240));
        row("standard tool tip text", "standard", QPalette::Active, QPalette::ToolTipText, text);
        row("bar button", "bar", QPalette::Active, QPalette::Button, grey(180));
        row("bar window", "bar", QPalette::Disabled, QPalette::Window, grey(180));
        row("bar base stays", "bar", QPalette::Active, QPalette::Base, grey(240));
        row("view base", "view", QPalette::Active, QPalette::Base, grey(210));
        row("view window stays", "view", QPalette::Active, QPalette::Window, grey(210));
        row("alternative window text", "alternative", QPalette::Active, QPalette::WindowText, Qt::black);
        row("alternative window", "alternative", QPalette::Active, QPalette::Window, grey(192));
        row("alternative light", "alternative", QPalette::Active, QPalette::Light, Qt::white);
        row("alternative dark", "alternative", QPalette::Active, QPalette::Dark, grey(128));
        row("alternative mid", "alternative", QPalette::Active, QPalette::Mid, grey(190));
        row("alternative text", "alternative", QPalette::Active, QPalette::Text, Qt::black);
        row("alternative base", "alternative", QPalette::Active, QPalette::Base, Qt::white);
        row("alternative highlight", "alternative", QPalette::Active, QPalette::Highlight, highlight);
        row("alternative highlighted text", "alternative", QPalette::Active, QPalette::HighlightedText, grey(240));
        row("alternative link", "alternative", QPalette::Active, QPalette::Link, RynStyle::focus_color);
    }

    void palettes()
    {
        QFETCH(QString, palette);
        QFETCH(QPalette::ColorGroup, group);
        QFETCH(QPalette::ColorRole, role);
        QFETCH(QColor, color);
        const QPalette p = palette == QLatin1String("standard") ? rynStyle()->standardPalette()
                           : palette == QLatin1String("bar")    ? QApplication::palette("QMenuBar")
                           : palette == QLatin1String("view")   ? QApplication::palette("QAbstractItemView")
                                                                : rynStyle()->alternativePalette();
        QCOMPARE(p.color(group, role), color);
    }

    void widgetsGetTheirPalettes()
    {
        QMenuBar bar;
        QStatusBar status;
        bar.ensurePolished();
        status.ensurePolished();
        QVERIFY(bar.autoFillBackground());
        QVERIFY(status.autoFillBackground());

        // A combo box's popup list is lighter than the other views.
        QComboBox combo;
        combo.addItem(QStringLiteral("a"));
        combo.view()->ensurePolished();
        QCOMPARE(combo.view()->palette().color(QPalette::Base), grey(240));
        QTableView table;
        table.ensurePolished();
        QCOMPARE(table.palette().color(QPalette::Base), grey(210));

        // An editor inside a view, too.
        auto *editor = new QWidget(table.viewport());
        editor->setPalette(QPalette(Qt::blue));
        rynStyle()->polish(editor);
        QCOMPARE(editor->palette().color(QPalette::Base), grey(240));
    }

    void pixelMetrics_data()
    {
        QTest::addColumn<QStyle::PixelMetric>("metric");
        QTest::addColumn<int>("value");
        const struct {
            const char *name;
            QStyle::PixelMetric metric;
            int value;
        } rows[] = {
            {"ButtonDefaultIndicator", QStyle::PM_ButtonDefaultIndicator, 2},
            {"ButtonShiftHorizontal", QStyle::PM_ButtonShiftHorizontal, 0},
            {"ButtonShiftVertical", QStyle::PM_ButtonShiftVertical, 0},
            {"DockWidgetHandleExtent", QStyle::PM_DockWidgetHandleExtent, 0},
            {"DockWidgetFrameWidth", QStyle::PM_DockWidgetFrameWidth, 0},
            {"TabBarTabOverlap", QStyle::PM_TabBarTabOverlap, 0},
            {"MenuBarPanelWidth", QStyle::PM_MenuBarPanelWidth, 0},
            {"MenuBarItemSpacing", QStyle::PM_MenuBarItemSpacing, 0},
            {"TabBarTabShiftHorizontal", QStyle::PM_TabBarTabShiftHorizontal, 0},
            {"TabBarTabShiftVertical", QStyle::PM_TabBarTabShiftVertical, 0},
            {"ToolBarFrameWidth", QStyle::PM_ToolBarFrameWidth, 0},
            {"ToolBarItemSpacing", QStyle::PM_ToolBarItemSpacing, 0},
            {"DefaultFrameWidth", QStyle::PM_DefaultFrameWidth, 1},
            {"SpinBoxFrameWidth", QStyle::PM_SpinBoxFrameWidth, 1},
            {"ProgressBarChunkWidth", QStyle::PM_ProgressBarChunkWidth, 1},
            {"ToolBarItemMargin", QStyle::PM_ToolBarItemMargin, 1},
            {"MaximumDragDistance", QStyle::PM_MaximumDragDistance, -1},
            {"ScrollBarExtent", QStyle::PM_ScrollBarExtent, 16},
            {"TabBarScrollButtonWidth", QStyle::PM_TabBarScrollButtonWidth, 16},
            {"ToolBarIconSize", QStyle::PM_ToolBarIconSize, 16},
            {"SmallIconSize", QStyle::PM_SmallIconSize, 16},
            {"TabBarIconSize", QStyle::PM_TabBarIconSize, 16},
            {"ScrollBarSliderMin", QStyle::PM_ScrollBarSliderMin, 22},
            {"SliderControlThickness", QStyle::PM_SliderControlThickness, 13},
            {"SliderLength", QStyle::PM_SliderLength, 13},
            {"IndicatorWidth", QStyle::PM_IndicatorWidth, 13},
            {"IndicatorHeight", QStyle::PM_IndicatorHeight, 13},
            {"ExclusiveIndicatorWidth", QStyle::PM_ExclusiveIndicatorWidth, 13},
            {"ExclusiveIndicatorHeight", QStyle::PM_ExclusiveIndicatorHeight, 13},
            {"SplitterWidth", QStyle::PM_SplitterWidth, 3},
            {"LayoutHorizontalSpacing", QStyle::PM_LayoutHorizontalSpacing, 10},
            {"LayoutVerticalSpacing", QStyle::PM_LayoutVerticalSpacing, 10},
            {"LargeIconSize", QStyle::PM_LargeIconSize, 24},
            {"ButtonIconSize", QStyle::PM_ButtonIconSize, 24},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << r.metric << r.value;
    }

    void pixelMetrics()
    {
        QFETCH(QStyle::PixelMetric, metric);
        QFETCH(int, value);
        QCOMPARE(rynStyle()->pixelMetric(metric), value);
    }

    void layoutMarginsOnlyForWindows()
    {
        QWidget window;
        QWidget child(&window);
        for (QStyle::PixelMetric m : {QStyle::PM_LayoutLeftMargin, QStyle::PM_LayoutTopMargin,
                                      QStyle::PM_LayoutRightMargin, QStyle::PM_LayoutBottomMargin}) {
            QCOMPARE(rynStyle()->pixelMetric(m, nullptr, &window), 10);
            QCOMPARE(rynStyle()->pixelMetric(m, nullptr, &child), 0);
            QStyleOption option;
            option.state = QStyle::State_Window;
            QCOMPARE(rynStyle()->pixelMetric(m, &option, &child), 10);
        }
    }

    void sliderTickmarkOffset_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<int>("ticks");
        QTest::addColumn<int>("offset");
        // The rectangle is 100 x 33: 20 pixels across a horizontal slider
        // beside its 13-pixel handle, 87 across a vertical one.
        QTest::newRow("horizontal, ticks above") << int(Qt::Horizontal) << int(QSlider::TicksAbove) << 20;
        QTest::newRow("horizontal, ticks below") << int(Qt::Horizontal) << int(QSlider::TicksBelow) << 10;
        QTest::newRow("horizontal, both sides") << int(Qt::Horizontal) << int(QSlider::TicksBothSides) << 10;
        QTest::newRow("horizontal, no ticks") << int(Qt::Horizontal) << int(QSlider::NoTicks) << 10;
        QTest::newRow("vertical, ticks left") << int(Qt::Vertical) << int(QSlider::TicksLeft) << 87;
        QTest::newRow("vertical, ticks right") << int(Qt::Vertical) << int(QSlider::TicksRight) << 43;
    }

    void sliderTickmarkOffset()
    {
        QFETCH(int, orientation);
        QFETCH(int, ticks);
        QFETCH(int, offset);
        QStyleOptionSlider option;
        option.rect = QRect(0, 0, 100, 33);
        option.orientation = Qt::Orientation(orientation);
        option.tickPosition = QSlider::TickPosition(ticks);
        QCOMPARE(rynStyle()->pixelMetric(QStyle::PM_SliderTickmarkOffset, &option), offset);
    }

    void styleHints_data()
    {
        QTest::addColumn<QStyle::StyleHint>("hint");
        QTest::addColumn<int>("value");
        const struct {
            const char *name;
            QStyle::StyleHint hint;
            int value;
        } rows[] = {
            {"EtchDisabledText", QStyle::SH_EtchDisabledText, 0},
            {"Slider_SnapToValue", QStyle::SH_Slider_SnapToValue, 0},
            {"Menu_AllowActiveAndDisabled", QStyle::SH_Menu_AllowActiveAndDisabled, 0},
            {"MenuBar_AltKeyNavigation", QStyle::SH_MenuBar_AltKeyNavigation, 0},
            {"ToolBox_SelectedPageTitleBold", QStyle::SH_ToolBox_SelectedPageTitleBold, 0},
            {"UnderlineShortcut", QStyle::SH_UnderlineShortcut, 0},
            {"ItemView_ShowDecorationSelected", QStyle::SH_ItemView_ShowDecorationSelected, 0},
            {"PrintDialog_RightAlignButtons", QStyle::SH_PrintDialog_RightAlignButtons, 1},
            {"MainWindow_SpaceBelowMenuBar", QStyle::SH_MainWindow_SpaceBelowMenuBar, 1},
            {"FontDialog_SelectAssociatedText", QStyle::SH_FontDialog_SelectAssociatedText, 1},
            {"ComboBox_ListMouseTracking", QStyle::SH_ComboBox_ListMouseTracking, 1},
            {"Menu_MouseTracking", QStyle::SH_Menu_MouseTracking, 1},
            {"MenuBar_MouseTracking", QStyle::SH_MenuBar_MouseTracking, 1},
            {"Slider_StopMouseOverSlider", QStyle::SH_Slider_StopMouseOverSlider, 1},
            {"Button_FocusPolicy", QStyle::SH_Button_FocusPolicy, 1},
            {"Menu_SubMenuPopupDelay", QStyle::SH_Menu_SubMenuPopupDelay, 30},
        };
        for (const auto &r : rows)
            QTest::newRow(r.name) << r.hint << r.value;
    }

    void styleHints()
    {
        QFETCH(QStyle::StyleHint, hint);
        QFETCH(int, value);
        QCOMPARE(rynStyle()->styleHint(hint), value);
    }

    void messageBoxIcons_data()
    {
        QTest::addColumn<QStyle::StandardPixmap>("icon");
        QTest::addColumn<int>("box");
        QTest::addColumn<QColor>("mark"); // a colour only this kind of icon shows
        QTest::newRow("information") << QStyle::SP_MessageBoxInformation << int(QMessageBox::Information)
                                     << QColor(0, 0, 255);
        QTest::newRow("warning") << QStyle::SP_MessageBoxWarning << int(QMessageBox::Warning) << QColor(255, 255, 0);
        QTest::newRow("critical") << QStyle::SP_MessageBoxCritical << int(QMessageBox::Critical) << QColor(255, 0, 0);
        QTest::newRow("question") << QStyle::SP_MessageBoxQuestion << int(QMessageBox::Question) << QColor(0, 0, 255);
    }

    void messageBoxIcons()
    {
        QFETCH(QStyle::StandardPixmap, icon);
        QFETCH(int, box);
        QFETCH(QColor, mark);
        const QPixmap pm = rynStyle()->standardPixmap(icon);
        QVERIFY(!pm.isNull());
        QCOMPARE(pm.size(), QSize(32, 32));
        const QImage image = pm.toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);                     // transparent background
        QVERIFY(countPixels(image, qRgb(0x99, 0x99, 0x99)) > 10);   // drop shadow
        QVERIFY(countPixels(image, mark.rgb()) > 10);
        QVERIFY(countDark(image) > 10);                             // black outline
        // Message boxes show the very same picture.
        QMessageBox messageBox;
        messageBox.setIcon(QMessageBox::Icon(box));
        QCOMPARE(messageBox.iconPixmap().toImage().convertToFormat(QImage::Format_ARGB32), image);
    }

    void extensionIconsAreCachedPerDirection()
    {
        RynStyle *style = rynStyle();
        QStyleOption ltr;
        ltr.direction = Qt::LeftToRight;
        QStyleOption rtl;
        rtl.direction = Qt::RightToLeft;
        for (QStyle::StandardPixmap sp :
             {QStyle::SP_ToolBarHorizontalExtensionButton, QStyle::SP_ToolBarVerticalExtensionButton}) {
            const QIcon first = style->standardIcon(sp, &ltr);
            QVERIFY(!first.isNull());
            QCOMPARE(style->standardIcon(sp, &ltr).cacheKey(), first.cacheKey());
            QCOMPARE(style->standardIcon(sp, &rtl).cacheKey(), style->standardIcon(sp, &rtl).cacheKey());
            QVERIFY(style->standardIcon(sp, &rtl).cacheKey() != first.cacheKey());
        }
        QVERIFY(style->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, &ltr).cacheKey()
                != style->standardIcon(QStyle::SP_ToolBarVerticalExtensionButton, &ltr).cacheKey());
    }

    void generatedIconPixmapChangesOnlyDisabled()
    {
        QPixmap pm(16, 16);
        pm.fill(Qt::red);
        QStyleOption option;
        option.palette = rynStyle()->standardPalette();
        for (QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Selected})
            QCOMPARE(rynStyle()->generatedIconPixmap(mode, pm, &option).cacheKey(), pm.cacheKey());
        QCommonStyle common;
        QCOMPARE(rynStyle()->generatedIconPixmap(QIcon::Disabled, pm, &option).toImage(),
                 common.generatedIconPixmap(QIcon::Disabled, pm, &option).toImage());
    }

    void subControlRects_data()
    {
        QTest::addColumn<int>("control");
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("direction");
        QTest::addColumn<QStyle::SubControl>("sub");
        QTest::addColumn<QRect>("expected");
        const int spin = QStyle::CC_SpinBox;
        const int combo = QStyle::CC_ComboBox;
        const int ltr = Qt::LeftToRight;
        const QRect s(0, 0, 100, 22);
        QTest::newRow("spin up") << spin << s << ltr << QStyle::SC_SpinBoxUp << QRect(78, 1, 21, 10);
        QTest::newRow("spin down") << spin << s << ltr << QStyle::SC_SpinBoxDown << QRect(78, 11, 21, 10);
        QTest::newRow("spin frame") << spin << s << ltr << QStyle::SC_SpinBoxFrame << s;
        QTest::newRow("spin edit") << spin << s << ltr << QStyle::SC_SpinBoxEditField << QRect(1, 1, 77, 20);
        QTest::newRow("spin odd height") << spin << QRect(0, 0, 100, 23) << ltr << QStyle::SC_SpinBoxDown
                                         << QRect(77, 11, 22, 11);
        QTest::newRow("spin buttons at least 8") << spin << QRect(0, 0, 60, 12) << ltr << QStyle::SC_SpinBoxDown
                                                 << QRect(48, 9, 11, 2);
        QTest::newRow("spin moved") << spin << QRect(10, 5, 100, 22) << ltr << QStyle::SC_SpinBoxUp
                                    << QRect(88, 6, 21, 10);
        QTest::newRow("spin right to left") << spin << s << int(Qt::RightToLeft) << QStyle::SC_SpinBoxUp
                                            << QRect(1, 1, 21, 10);
        const QRect c(5, 3, 120, 20);
        QTest::newRow("combo frame") << combo << c << ltr << QStyle::SC_ComboBoxFrame << c;
        QTest::newRow("combo popup") << combo << c << ltr << QStyle::SC_ComboBoxListBoxPopup << c;
        QTest::newRow("combo edit") << combo << c << ltr << QStyle::SC_ComboBoxEditField << QRect(6, 4, 99, 18);
        QTest::newRow("combo arrow") << combo << c << ltr << QStyle::SC_ComboBoxArrow << QRect(105, 4, 19, 18);
        QTest::newRow("combo arrow right to left") << combo << c << int(Qt::RightToLeft) << QStyle::SC_ComboBoxArrow
                                                   << QRect(6, 4, 19, 18);
    }

    void subControlRects()
    {
        QFETCH(int, control);
        QFETCH(QRect, rect);
        QFETCH(int, direction);
        QFETCH(QStyle::SubControl, sub);
        QFETCH(QRect, expected);
        QStyleOptionSpinBox spin;
        QStyleOptionComboBox combo;
        QStyleOptionComplex *option = control == QStyle::CC_SpinBox ? static_cast<QStyleOptionComplex *>(&spin)
                                                                    : &combo;
        option->rect = rect;
        option->direction = Qt::LayoutDirection(direction);
        QCOMPARE(rynStyle()->subControlRect(QStyle::ComplexControl(control), option, sub), expected);
    }

    void pushButtonSizes_data()
    {
        QTest::addColumn<QSize>("contents");
        QTest::addColumn<bool>("autoDefault");
        QTest::addColumn<bool>("icon");
        QTest::addColumn<QSize>("minimum"); // -1: the common size
        QTest::newRow("plain") << QSize(20, 10) << false << false << QSize(75, 23);
        QTest::newRow("auto-default") << QSize(20, 10) << true << false << QSize(77, 25);
        QTest::newRow("with icon: height only") << QSize(20, 10) << false << true << QSize(-1, 23);
        QTest::newRow("large contents win") << QSize(200, 40) << false << false << QSize(-1, -1);
    }

    void pushButtonSizes()
    {
        QFETCH(QSize, contents);
        QFETCH(bool, autoDefault);
        QFETCH(bool, icon);
        QFETCH(QSize, minimum);
        QStyleOptionButton option;
        if (autoDefault)
            option.features = QStyleOptionButton::AutoDefaultButton;
        if (icon)
            option.icon = redIcon();
        const QSize size = rynStyle()->sizeFromContents(QStyle::CT_PushButton, &option, contents);
        if (minimum.width() >= 0)
            QCOMPARE(size.width(), minimum.width());
        else
            QVERIFY(size.width() >= contents.width() && (contents.width() > 75 || size.width() < 75));
        if (minimum.height() >= 0)
            QCOMPARE(size.height(), minimum.height());
        else
            QVERIFY(size.height() > contents.height());
    }

    void sizesFromContents_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("variant");
        QTest::addColumn<QSize>("contents");
        QTest::addColumn<QSize>("expected");
        const QFontMetrics fm(QApplication::font());
        const int leading = fm.leading();
        const int extra = qMax(2 * qMax(leading, 1) - leading - 2, 0);
        const int line = fm.height() + 8; // text height plus margins and frames of a menu item
        QTest::newRow("tool button") << int(QStyle::CT_ToolButton) << 0 << QSize(16, 16) << QSize(23, 22);
        QTest::newRow("combo, framed") << int(QStyle::CT_ComboBox) << 1 << QSize(50, 16) << QSize(69, 20);
        QTest::newRow("combo, no frame") << int(QStyle::CT_ComboBox) << 0 << QSize(50, 16) << QSize(66, 20);
        QTest::newRow("combo, tall") << int(QStyle::CT_ComboBox) << 1 << QSize(50, 30)
                                     << QSize(83, 32 + extra);
        QTest::newRow("spin box at least 20") << int(QStyle::CT_SpinBox) << 0 << QSize(40, 4) << QSize(-1, 20);
        QTest::newRow("menu bar item") << int(QStyle::CT_MenuBarItem) << 0 << QSize(30, 15) << QSize(42, 19);
        QTest::newRow("menu bar item, empty") << int(QStyle::CT_MenuBarItem) << 0 << QSize(0, 0) << QSize(0, 0);
        // Menu items: 0 plain, 1 with shortcut, 2 sub-menu, 3 separator, 4 icon column 16, 5 no icon column.
        QTest::newRow("menu separator") << int(QStyle::CT_MenuItem) << 3 << QSize(40, 14) << QSize(10, 2);
        QTest::newRow("menu item") << int(QStyle::CT_MenuItem) << 0 << QSize(40, 14) << QSize(72, line);
        QTest::newRow("menu item, shortcut") << int(QStyle::CT_MenuItem) << 1 << QSize(40, 14) << QSize(92, line);
        QTest::newRow("menu item, sub-menu") << int(QStyle::CT_MenuItem) << 2 << QSize(40, 14)
                                             << QSize(72 + (line - 4) / 2 + 6, line);
        QTest::newRow("menu item, icons") << int(QStyle::CT_MenuItem) << 4 << QSize(40, 14)
                                          << QSize(50 + 4 + 16, qMax(line, 20));
        QTest::newRow("menu item, no icon column") << int(QStyle::CT_MenuItem) << 5 << QSize(40, 14)
                                                   << QSize(72, line);
        QTest::newRow("menu item, tall contents") << int(QStyle::CT_MenuItem) << 0 << QSize(40, 50) << QSize(72, 50);
    }

    void sizesFromContents()
    {
        QFETCH(int, type);
        QFETCH(int, variant);
        QFETCH(QSize, contents);
        QFETCH(QSize, expected);
        std::unique_ptr<QStyleOption> option;
        if (type == QStyle::CT_ComboBox) {
            auto combo = std::make_unique<QStyleOptionComboBox>();
            combo->frame = variant == 1;
            option = std::move(combo);
        } else if (type == QStyle::CT_MenuItem) {
            auto item = std::make_unique<QStyleOptionMenuItem>();
            item->text = variant == 1 ? QStringLiteral("Open\tCtrl+O") : QStringLiteral("Open");
            item->menuItemType = variant == 2   ? QStyleOptionMenuItem::SubMenu
                                 : variant == 3 ? QStyleOptionMenuItem::Separator
                                                : QStyleOptionMenuItem::Normal;
            item->maxIconWidth = variant == 4 ? 16 : variant == 5 ? -1 : 0;
            if (variant == 4)
                item->icon = redIcon();
            option = std::move(item);
        } else if (type == QStyle::CT_SpinBox) {
            option = std::make_unique<QStyleOptionSpinBox>();
        } else {
            option = std::make_unique<QStyleOptionToolButton>();
        }
        option->fontMetrics = QFontMetrics(QApplication::font());
        const QSize size = rynStyle()->sizeFromContents(QStyle::ContentsType(type), option.get(), contents);
        if (expected.width() >= 0)
            QCOMPARE(size.width(), expected.width());
        QCOMPARE(size.height(), expected.height());
    }

    void verticalGradientSteps()
    {
        QImage image = blankImage(QSize(4, 256));
        QPainter p(&image);
        const QPen pen(Qt::green);
        p.setPen(pen);
        RynStyle::drawVerticalGradient(&p, image.rect(), QColor(0, 0, 100), QColor(255, 128, 100));
        QCOMPARE(p.pen(), pen);
        p.end();
        // A step of 255/256 per row in 16.16 fixed point: row 255 is 254, not 255.
        QCOMPARE(image.pixel(0, 0), qRgb(0, 0, 100));
        QCOMPARE(image.pixel(3, 128), qRgb(127, 64, 100));
        QCOMPARE(image.pixel(1, 255), qRgb(254, 127, 100));
    }

    void arrowIsCentredTriangle_data()
    {
        QTest::addColumn<int>("element");
        QTest::addColumn<int>("across");
        QTest::addColumn<int>("along");
        QTest::addColumn<bool>("vertical"); // points up or down
        QTest::newRow("down 7") << int(QStyle::PE_IndicatorArrowDown) << 7 << 6 << true;
        QTest::newRow("up 7") << int(QStyle::PE_IndicatorArrowUp) << 7 << 6 << true;
        QTest::newRow("left 7") << int(QStyle::PE_IndicatorArrowLeft) << 7 << 6 << false;
        QTest::newRow("right 7") << int(QStyle::PE_IndicatorArrowRight) << 7 << 6 << false;
    }

    void arrowIsCentredTriangle()
    {
        QFETCH(int, element);
        QFETCH(int, across);
        QFETCH(int, along);
        QFETCH(bool, vertical);
        QImage image = blankImage(QSize(21, 21));
        QStyleOption option;
        option.rect = image.rect();
        option.palette.setColor(QPalette::WindowText, Qt::red);
        QPainter p(&image);
        rynStyle()->drawPrimitive(QStyle::PrimitiveElement(element), &option, &p);
        p.end();
        QRect box;
        for (int y = 0; y < 21; ++y)
            for (int x = 0; x < 21; ++x)
                if (image.pixel(x, y) == qRgb(255, 0, 0))
                    box |= QRect(x, y, 1, 1);
        QCOMPARE(vertical ? box.size() : box.size().transposed(), QSize(across, along));
        QVERIFY(qAbs(box.center().x() - 10) <= 1 && qAbs(box.center().y() - 10) <= 1);
        QVERIFY(countPixels(image, qRgb(255, 0, 0)) < across * along); // a triangle, not a box
    }

    void circleOutlineAndFill()
    {
        QImage image = blankImage(QSize(21, 21));
        QPainter p(&image);
        RynStyle::drawCircle(&p, QPoint(10, 10), Qt::blue, Qt::yellow);
        p.end();
        QCOMPARE(image.pixel(10, 10), qRgb(255, 255, 0));
        QCOMPARE(image.pixel(4, 10), qRgb(0, 0, 255));   // (-6, 0) on the outline
        QCOMPARE(image.pixel(10, 16), qRgb(0, 0, 255));  // (0, 6)
        QCOMPARE(image.pixel(4, 7), SENTINEL);           // (-6, -3) outside the cut corner
        QCOMPARE(image.pixel(3, 10), SENTINEL);
    }

    void focusAndDarkFrames_data()
    {
        QTest::addColumn<int>("element");
        QTest::addColumn<bool>("focus");
        QTest::addColumn<QColor>("corner");
        const QColor dark = grey(112);
        const QColor focus = RynStyle::focus_color;
        QTest::newRow("frame") << int(QStyle::PE_Frame) << true << dark;
        QTest::newRow("menu frame") << int(QStyle::PE_FrameMenu) << false << dark;
        QTest::newRow("tab widget frame") << int(QStyle::PE_FrameTabWidget) << false << dark;
        QTest::newRow("window frame") << int(QStyle::PE_FrameWindow) << false << dark;
        QTest::newRow("tool bar panel") << int(QStyle::PE_PanelToolBar) << false << dark;
        QTest::newRow("focus rectangle") << int(QStyle::PE_FrameFocusRect) << false << focus;
        QTest::newRow("default button") << int(QStyle::PE_FrameDefaultButton) << false << focus;
        QTest::newRow("line edit") << int(QStyle::PE_FrameLineEdit) << false << dark;
        QTest::newRow("line edit with focus") << int(QStyle::PE_FrameLineEdit) << true << focus;
        QTest::newRow("command button") << int(QStyle::PE_PanelButtonCommand) << false << dark;
        QTest::newRow("command button with focus") << int(QStyle::PE_PanelButtonCommand) << true << focus;
    }

    void focusAndDarkFrames()
    {
        QFETCH(int, element);
        QFETCH(bool, focus);
        QFETCH(QColor, corner);
        QStyle::State state = QStyle::State_Enabled;
        if (focus)
            state |= QStyle::State_HasFocus;
        const QImage image = render(rynStyle(), QStyle::PrimitiveElement(element), state);
        QCOMPARE(image.pixel(0, 0), corner.rgb());
        QCOMPARE(image.pixel(29, 19), corner.rgb());
        if (element != QStyle::PE_PanelButtonCommand)
            QCOMPARE(image.pixel(15, 10), SENTINEL); // frames do not fill
        else
            QCOMPARE(image.pixel(15, 1), grey(237).rgb()); // Light to Mid in 16.16 steps of -3
    }

    void checkAndRadioMarksUseTheFocusColour()
    {
        const QRgb focus = RynStyle::focus_color.rgb();
        const QStyle::State on = QStyle::State_Enabled | QStyle::State_On;
        QVERIFY(countPixels(render(rynStyle(), QStyle::PE_IndicatorCheckBox, on, {13, 13}), focus) > 0);
        QCOMPARE(countPixels(render(rynStyle(), QStyle::PE_IndicatorCheckBox, QStyle::State_Enabled, {13, 13}), focus), 0);
        QVERIFY(countPixels(render(rynStyle(), QStyle::PE_IndicatorRadioButton, on, {13, 13}), focus) > 0);
        QCOMPARE(countPixels(render(rynStyle(), QStyle::PE_IndicatorRadioButton, QStyle::State_Enabled, {13, 13}), focus), 0);
    }

    void branchIndicatorOnlyForParents_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("drawn");
        QTest::newRow("leaf") << int(QStyle::State_Enabled) << false;
        QTest::newRow("closed parent") << int(QStyle::State_Enabled | QStyle::State_Children) << true;
        QTest::newRow("open parent") << int(QStyle::State_Enabled | QStyle::State_Children | QStyle::State_Open) << true;
    }

    void branchIndicatorOnlyForParents()
    {
        QFETCH(int, state);
        QFETCH(bool, drawn);
        const QImage image = render(rynStyle(), QStyle::PE_IndicatorBranch, QStyle::State(state), {16, 16});
        QCOMPARE(countPixels(image, grey(112).rgb()) > 0, drawn);
        QCOMPARE(changed(image), drawn);
    }

    void extendBoxFrameShowsFocus_data()
    {
        QTest::addColumn<bool>("focus");
        QTest::addColumn<QColor>("frame");
        QTest::newRow("without focus") << false << grey(112);
        QTest::newRow("with focus") << true << RynStyle::focus_color;
    }

    void extendBoxFrameShowsFocus()
    {
        QFETCH(bool, focus);
        QFETCH(QColor, frame);
        QImage image = blankImage(QSize(100, 20));
        QStyleOptionComplex option;
        option.rect = image.rect();
        option.palette = rynStyle()->standardPalette();
        option.state = QStyle::State_Enabled | (focus ? QStyle::State_HasFocus : QStyle::State_None);
        QPainter p(&image);
        rynStyle()->drawComplexControl(RynStyle::CC_ExtendBox, &option, &p);
        p.end();
        QCOMPARE(image.pixel(0, 0), frame.rgb());
        QCOMPARE(image.pixel(99, 19), frame.rgb());
        QCOMPARE(image.pixel(50, 10), SENTINEL);             // the field is the host's
        QCOMPARE(image.pixel(80, 10), grey(112).rgb());      // the line before the button
        QCOMPARE(image.pixel(81, 1), grey(180).rgb());       // gradient from Mid ...
        QVERIFY(countPixels(image, grey(240).rgb()) > 10);   // ... holding a light arrow
    }

    void paintingEveryElement_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("direction");
        const struct {
            const char *name;
            QStyle::State state;
            Qt::LayoutDirection direction;
        } variants[] = {
            {"enabled", QStyle::State_Enabled, Qt::LeftToRight},
            {"disabled", QStyle::State_None, Qt::LeftToRight},
            {"busy", QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_Sunken | QStyle::State_On
                         | QStyle::State_Selected | QStyle::State_MouseOver | QStyle::State_Open
                         | QStyle::State_AutoRaise | QStyle::State_NoChange,
             Qt::LeftToRight},
            {"right to left", QStyle::State_Enabled | QStyle::State_Selected, Qt::RightToLeft},
        };
        for (int i = 0; i < int(std::size(ELEMENTS)); ++i)
            for (const auto &v : variants)
                QTest::addRow("%s, %s", ELEMENTS[i].name, v.name) << i << int(v.state) << int(v.direction);
    }

    void paintingEveryElement()
    {
        QFETCH(int, index);
        QFETCH(int, state);
        QFETCH(int, direction);
        const Element &e = ELEMENTS[index];
        QImage image = blankImage(e.size);
        std::unique_ptr<QStyleOption> option = makeOption(e);
        option->rect = image.rect();
        option->palette = rynStyle()->standardPalette();
        option->fontMetrics = QFontMetrics(QApplication::font());
        option->state = QStyle::State(state) | e.extra;
        option->direction = Qt::LayoutDirection(direction);
        if (auto *complex = qstyleoption_cast<QStyleOptionComplex *>(option.get())) {
            complex->subControls = QStyle::SC_All;
            if (option->state & QStyle::State_Sunken)
                complex->activeSubControls = QStyle::SC_All;
        }
        QPainter p(&image);
        const QPen pen(Qt::cyan);
        const QBrush brush(Qt::yellow);
        p.setPen(pen);
        p.setBrush(brush);
        draw(rynStyle(), e, option.get(), &p);
        // Drawing leaves the painter as it found it.
        QCOMPARE(p.pen(), pen);
        QCOMPARE(p.brush(), brush);
        QVERIFY(!p.hasClipping());
        p.end();
        QCOMPARE(changed(image), !e.drawsNothing);
    }
};

int main(int argc, char **argv)
{
    Application app(argc, argv);
    TestStyle style;
    return QTest::qExec(&style, argc, argv);
}

#include "tst_style.moc"
