#include "gapp_application.h"
#include "gapp_style.h"
#include <QComboBox>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPainter>
#include <QStatusBar>
#include <QStyleOption>
#include <QTableView>
#include <QToolTip>
#include <QtTest>
#include <functional>
#include <memory>

using namespace Zal::GApp;
using S = QStyle;

namespace {

const QRgb SENTINEL = qRgb(255, 0, 255);
const QColor DARK(112, 112, 112);

RynStyle *style() { return qobject_cast<RynStyle *>(QApplication::style()); }
QColor grey(int level) { return QColor(level, level, level); }
template <class E> const char *enumName(E value) { return QMetaEnum::fromType<E>().valueToKey(value); }

QImage blankImage(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(SENTINEL);
    return image;
}

int countPixels(const QImage &image, const std::function<bool(QRgb)> &match)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += match(image.pixel(x, y));
    return n;
}

int countPixels(const QImage &image, QRgb color)
{
    return countPixels(image, [color](QRgb c) { return c == color; });
}

QIcon redIcon()
{
    QPixmap pm(16, 16);
    pm.fill(Qt::red);
    return QIcon(pm);
}

// Draws a primitive with a plain option onto a sentinel image.
QImage render(S::PrimitiveElement element, S::State state, QSize size = QSize(30, 20))
{
    QImage image = blankImage(size);
    QStyleOption option;
    option.rect = image.rect();
    option.palette = style()->standardPalette();
    option.state = state;
    QPainter p(&image);
    style()->drawPrimitive(element, &option, &p);
    return image;
}

// ---- Every element the style draws itself, each with an option that reaches its details;
// `variant` picks a flavour of the option. Options are shared, so that each is deleted as
// what it was made: QStyleOption has no virtual destructor.

enum Kind { Primitive, Control, Complex };
using Option = std::shared_ptr<QStyleOption>;
using Maker = Option (*)(int variant, QSize size);

#define OPTION(name, Type, ...) \
    Option name([[maybe_unused]] int v, [[maybe_unused]] QSize size) { auto o = std::make_shared<Type>(); __VA_ARGS__; return o; }

OPTION(plain, QStyleOption, o->state = S::State_Horizontal)
OPTION(branch, QStyleOption, o->state = S::State_Children)
OPTION(focusRect, QStyleOptionFocusRect, )
OPTION(frame, QStyleOptionFrame, )
OPTION(complex, QStyleOptionComplex, )
OPTION(button, QStyleOptionButton, o->text = QStringLiteral("OK"); o->icon = redIcon(); o->iconSize = QSize(16, 16);
       o->features = QStyleOptionButton::DefaultButton | QStyleOptionButton::HasMenu)
OPTION(tab, QStyleOptionTab, o->shape = QTabBar::Shape(v))
OPTION(progress, QStyleOptionProgressBar, o->maximum = v == 1 ? 0 : 100; o->progress = 40;
       o->invertedAppearance = v == 2; o->state = v == 2 ? S::State_None : S::State_Horizontal)
OPTION(menuItem, QStyleOptionMenuItem, o->text = QStringLiteral("&Open\tCtrl+O"); o->maxIconWidth = 16;
       o->menuItemType = QStyleOptionMenuItem::MenuItemType(v);
       o->checkType = QStyleOptionMenuItem::Exclusive; o->checked = true)
OPTION(header, QStyleOptionHeader, o->text = QStringLiteral("x"); o->icon = redIcon();
       o->sortIndicator = QStyleOptionHeader::SortDown)
OPTION(sizeGrip, QStyleOptionSizeGrip, o->corner = Qt::Corner(v))
OPTION(combo, QStyleOptionComboBox, o->currentText = QStringLiteral("Item"); o->currentIcon = redIcon();
       o->editable = v == 1)
OPTION(spin, QStyleOptionSpinBox, o->stepEnabled = QAbstractSpinBox::StepUpEnabled;
       o->buttonSymbols = v == 1 ? QAbstractSpinBox::PlusMinus : QAbstractSpinBox::UpDownArrows)
OPTION(slider, QStyleOptionSlider, o->orientation = size.width() > size.height() ? Qt::Horizontal : Qt::Vertical;
       o->maximum = 100; o->sliderPosition = o->sliderValue = 30; o->pageStep = 10;
       o->tickPosition = QSlider::TicksBothSides)
OPTION(toolButton, QStyleOptionToolButton, o->icon = redIcon(); o->iconSize = QSize(16, 16);
       o->features = v == 1 ? QStyleOptionToolButton::MenuButtonPopup : QStyleOptionToolButton::HasMenu)
OPTION(titleBar, QStyleOptionTitleBar, o->text = QStringLiteral("A window"); o->icon = redIcon();
       o->titleBarState = S::State_Active;
       o->titleBarFlags = Qt::Window | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint
                          | Qt::WindowContextHelpButtonHint)
#undef OPTION

struct Element { Kind kind; uint element; QSize size; Maker make = plain; int variant = 0; bool drawsNothing = false; };

const QSize BOX(40, 30), SMALL(16, 16), BAR(8, 30), WIDE(120, 22), BUTTON(80, 26);
const Element ELEMENTS[] = {
    {Control, S::CE_PushButton, BUTTON, button}, {Control, S::CE_PushButtonBevel, BUTTON, button},
    {Control, S::CE_PushButtonLabel, BUTTON, button},
    {Control, S::CE_TabBarTabShape, {70, 22}, tab, QTabBar::RoundedNorth},
    {Control, S::CE_TabBarTabShape, {70, 22}, tab, QTabBar::RoundedSouth},
    {Control, S::CE_TabBarTabShape, {22, 70}, tab, QTabBar::RoundedWest},
    {Control, S::CE_TabBarTabShape, {22, 70}, tab, QTabBar::RoundedEast},
    {Control, S::CE_ProgressBarGroove, WIDE, progress}, {Control, S::CE_ProgressBarContents, WIDE, progress},
    {Control, S::CE_ProgressBarContents, WIDE, progress, 1},      // busy
    {Control, S::CE_ProgressBarContents, {20, 100}, progress, 2}, // vertical, inverted
    {Control, S::CE_MenuItem, WIDE, menuItem, QStyleOptionMenuItem::Normal},
    {Control, S::CE_MenuItem, WIDE, menuItem, QStyleOptionMenuItem::SubMenu},
    {Control, S::CE_MenuItem, {120, 6}, menuItem, QStyleOptionMenuItem::Separator},
    {Control, S::CE_MenuItem, {120, 12}, menuItem, QStyleOptionMenuItem::Scroller},
    {Control, S::CE_MenuTearoff, {120, 8}}, {Control, S::CE_MenuBarItem, {50, 22}, menuItem},
    {Control, S::CE_MenuBarEmptyArea, {50, 22}}, {Control, S::CE_HeaderSection, {80, 22}, header},
    {Control, S::CE_HeaderLabel, {80, 22}, header}, {Control, S::CE_SizeGrip, SMALL, sizeGrip, Qt::BottomRightCorner},
    {Control, S::CE_SizeGrip, SMALL, sizeGrip, Qt::TopLeftCorner}, {Control, S::CE_Splitter, {3, 60}},
    {Control, S::CE_ComboBoxLabel, WIDE, combo},
    {Complex, S::CC_SpinBox, {80, 22}, spin}, {Complex, S::CC_SpinBox, {80, 22}, spin, 1}, // plus and minus
    {Complex, S::CC_ComboBox, WIDE, combo}, {Complex, S::CC_ComboBox, WIDE, combo, 1},      // editable
    {Complex, S::CC_ScrollBar, {120, 16}, slider}, {Complex, S::CC_ScrollBar, {16, 120}, slider},
    {Complex, S::CC_Slider, {120, 30}, slider}, {Complex, S::CC_Slider, {30, 120}, slider},
    {Complex, S::CC_ToolButton, {30, 28}, toolButton}, {Complex, S::CC_ToolButton, {44, 28}, toolButton, 1}, // menu
    {Complex, S::CC_TitleBar, {200, 22}, titleBar}, {Complex, RynStyle::CC_ExtendBox, WIDE, complex},
    {Primitive, S::PE_Frame, BOX}, {Primitive, S::PE_FrameMenu, BOX}, {Primitive, S::PE_FrameTabWidget, BOX},
    {Primitive, S::PE_FrameWindow, BOX}, {Primitive, S::PE_PanelToolBar, BOX},
    {Primitive, S::PE_FrameStatusBarItem, BOX, plain, 0, true}, {Primitive, S::PE_FrameDefaultButton, BOX},
    {Primitive, S::PE_FrameDockWidget, BOX}, {Primitive, S::PE_FrameFocusRect, BOX, focusRect},
    {Primitive, S::PE_FrameLineEdit, BOX, frame}, {Primitive, S::PE_PanelButtonCommand, BOX, button},
    {Primitive, S::PE_PanelButtonTool, BOX}, {Primitive, S::PE_IndicatorArrowDown, SMALL},
    {Primitive, S::PE_IndicatorArrowLeft, SMALL}, {Primitive, S::PE_IndicatorArrowRight, SMALL},
    {Primitive, S::PE_IndicatorArrowUp, SMALL}, {Primitive, S::PE_IndicatorBranch, SMALL, branch},
    {Primitive, S::PE_IndicatorItemViewItemCheck, SMALL}, {Primitive, S::PE_IndicatorCheckBox, SMALL},
    {Primitive, S::PE_IndicatorHeaderArrow, SMALL, header}, {Primitive, S::PE_IndicatorProgressChunk, SMALL},
    {Primitive, S::PE_IndicatorRadioButton, SMALL}, {Primitive, S::PE_IndicatorToolBarHandle, BAR},
    {Primitive, S::PE_IndicatorToolBarSeparator, BAR}, {Primitive, S::PE_IndicatorTabTear, BAR},
    {Primitive, S::PE_PanelScrollAreaCorner, SMALL},
};

const char *elementName(const Element &e)
{
    return e.kind == Primitive ? enumName(S::PrimitiveElement(e.element))
           : e.kind == Control ? enumName(S::ControlElement(e.element))
           : e.element == RynStyle::CC_ExtendBox ? "CC_ExtendBox"
                                                 : enumName(S::ComplexControl(e.element));
}

// ---- Tables of single checks: each row is one test row, named by its first field.

template <class T, size_t N> void addRows(const T (&rows)[N])
{
    QTest::addColumn<int>("row");
    for (size_t i = 0; i < N; ++i)
        QTest::newRow(rows[i].name) << int(i);
}

const QRect SPIN(0, 0, 100, 22), COMBO(5, 3, 120, 20);
const auto LTR = Qt::LeftToRight, RTL = Qt::RightToLeft;
const struct SubRect {
    const char *name; S::ComplexControl control; QRect rect; Qt::LayoutDirection direction; S::SubControl sub;
    QRect expected;
} RECTS[] = {
    {"spin up", S::CC_SpinBox, SPIN, LTR, S::SC_SpinBoxUp, QRect(78, 1, 21, 10)},
    {"spin down", S::CC_SpinBox, SPIN, LTR, S::SC_SpinBoxDown, QRect(78, 11, 21, 10)},
    {"spin frame", S::CC_SpinBox, SPIN, LTR, S::SC_SpinBoxFrame, SPIN},
    {"spin edit", S::CC_SpinBox, SPIN, LTR, S::SC_SpinBoxEditField, QRect(1, 1, 77, 20)},
    {"spin odd height", S::CC_SpinBox, QRect(0, 0, 100, 23), LTR, S::SC_SpinBoxDown, QRect(77, 11, 22, 11)},
    {"spin buttons at least 8", S::CC_SpinBox, QRect(0, 0, 60, 12), LTR, S::SC_SpinBoxDown, QRect(48, 9, 11, 2)},
    {"spin moved", S::CC_SpinBox, QRect(10, 5, 100, 22), LTR, S::SC_SpinBoxUp, QRect(88, 6, 21, 10)},
    {"spin right to left", S::CC_SpinBox, SPIN, RTL, S::SC_SpinBoxUp, QRect(1, 1, 21, 10)},
    {"combo frame", S::CC_ComboBox, COMBO, LTR, S::SC_ComboBoxFrame, COMBO},
    {"combo popup", S::CC_ComboBox, COMBO, LTR, S::SC_ComboBoxListBoxPopup, COMBO},
    {"combo edit", S::CC_ComboBox, COMBO, LTR, S::SC_ComboBoxEditField, QRect(6, 4, 99, 18)},
    {"combo arrow", S::CC_ComboBox, COMBO, LTR, S::SC_ComboBoxArrow, QRect(105, 4, 19, 18)},
    {"combo arrow right to left", S::CC_ComboBox, COMBO, RTL, S::SC_ComboBoxArrow, QRect(6, 4, 19, 18)},
};

// A primitive drawn enabled in `state`: its colour at `at` (or, at (-1, -1), anywhere) is `present` or not.
const QPoint CORNER(0, 0), ANYWHERE(-1, -1);
const int ON = S::State_On, FOCUS = S::State_HasFocus, CHILDREN = S::State_Children;
const struct Colour {
    const char *name; S::PrimitiveElement element; int state; QPoint at; QColor color; bool present = true;
} COLOURS[] = {
    {"frame ignores focus", S::PE_Frame, FOCUS, CORNER, DARK},
    {"frame does not fill", S::PE_Frame, 0, QPoint(15, 10), QColor::fromRgb(SENTINEL)},
    {"menu frame", S::PE_FrameMenu, 0, CORNER, DARK},
    {"tab widget frame", S::PE_FrameTabWidget, 0, CORNER, DARK},
    {"window frame", S::PE_FrameWindow, 0, CORNER, DARK},
    {"tool bar panel", S::PE_PanelToolBar, 0, QPoint(29, 19), DARK},
    {"focus rectangle", S::PE_FrameFocusRect, 0, CORNER, RynStyle::focus_color},
    {"default button", S::PE_FrameDefaultButton, 0, CORNER, RynStyle::focus_color},
    {"line edit", S::PE_FrameLineEdit, 0, CORNER, DARK},
    {"line edit with focus", S::PE_FrameLineEdit, FOCUS, CORNER, RynStyle::focus_color},
    {"command button", S::PE_PanelButtonCommand, 0, CORNER, DARK},
    {"command button with focus", S::PE_PanelButtonCommand, FOCUS, CORNER, RynStyle::focus_color},
    {"command button gradient", S::PE_PanelButtonCommand, 0, QPoint(15, 1), grey(237)},
    {"check box on", S::PE_IndicatorCheckBox, ON, ANYWHERE, RynStyle::focus_color},
    {"check box off", S::PE_IndicatorCheckBox, 0, ANYWHERE, RynStyle::focus_color, false},
    {"radio button on", S::PE_IndicatorRadioButton, ON, ANYWHERE, RynStyle::focus_color},
    {"radio button off", S::PE_IndicatorRadioButton, 0, ANYWHERE, RynStyle::focus_color, false},
    {"branch of a leaf", S::PE_IndicatorBranch, 0, ANYWHERE, DARK, false},
    {"closed branch", S::PE_IndicatorBranch, CHILDREN, ANYWHERE, DARK},
    {"open branch", S::PE_IndicatorBranch, CHILDREN | S::State_Open, ANYWHERE, DARK},
};

} // namespace

class TestStyle : public QObject
{
    Q_OBJECT

private slots:
    void applicationInstallsTheStyle()
    {
        QVERIFY(style());
        QCOMPARE(RynStyle::focus_color, QColor(170, 30, 30, 255));
        QCOMPARE(QApplication::palette().color(QPalette::Window), grey(210));
        QCOMPARE(QApplication::palette("QToolBar").color(QPalette::Button), grey(180));
        QCOMPARE(QApplication::palette("QStatusBar").color(QPalette::Window), grey(180));
        QCOMPARE(QToolTip::palette().color(QPalette::Base), grey(240));
        QVERIFY(!QApplication::desktopSettingsAware());
    }
    void palettes_data()
    {
        QTest::addColumn<char>("palette"); // standard, bar, view, alternative
        QTest::addColumn<QPalette::ColorGroup>("group");
        QTest::addColumn<QPalette::ColorRole>("role");
        QTest::addColumn<QColor>("color");
        const QColor text(49, 49, 49), highlight(170, 100, 100), focus = RynStyle::focus_color;
        using P = QPalette;
        using Roles = std::vector<std::pair<P::ColorRole, QColor>>;
        const struct { char palette; P::ColorGroup group; Roles roles; } rows[] = {
            {'s', P::Active, {{P::Window, grey(210)}, {P::Base, grey(240)}, {P::AlternateBase, grey(240)},
                              {P::WindowText, text}, {P::ButtonText, text}, {P::Highlight, highlight},
                              {P::HighlightedText, grey(240)}, {P::BrightText, grey(240)}, {P::Link, focus},
                              {P::LinkVisited, focus}, {P::Light, grey(240)}, {P::Mid, grey(180)},
                              {P::Shadow, grey(150)}, {P::Midlight, QColor(0, 255, 0)}, {P::ToolTipBase, grey(240)},
                              {P::ToolTipText, text}}},
            {'s', P::Inactive, {{P::Button, grey(210)}, {P::Text, text}}},
            {'s', P::Disabled, {{P::Dark, grey(112)}, {P::WindowText, grey(150)}, {P::Text, grey(150)},
                                {P::ButtonText, grey(150)}, {P::HighlightedText, grey(150)}, {P::Window, grey(210)}}},
            {'b', P::Active, {{P::Button, grey(180)}, {P::Base, grey(240)}}},
            {'b', P::Disabled, {{P::Window, grey(180)}}},
            {'v', P::Active, {{P::Base, grey(210)}, {P::Window, grey(210)}}},
            {'a', P::Active, {{P::WindowText, Qt::black}, {P::Window, grey(192)}, {P::Light, Qt::white},
                              {P::Dark, grey(128)}, {P::Mid, grey(190)}, {P::Text, Qt::black}, {P::Base, Qt::white},
                              {P::Highlight, highlight}, {P::HighlightedText, grey(240)}, {P::Link, focus}}},
        };
        for (const auto &r : rows)
            for (const auto &[role, color] : r.roles)
                QTest::addRow("%c %s %s", r.palette, enumName(r.group), enumName(role))
                    << r.palette << r.group << role << color;
    }
    void palettes()
    {
        QFETCH(char, palette);
        QFETCH(QPalette::ColorGroup, group);
        QFETCH(QPalette::ColorRole, role);
        QFETCH(QColor, color);
        // The bar and view palettes reach widgets through their classes.
        const QPalette p = palette == 's'   ? style()->standardPalette()
                           : palette == 'b' ? QApplication::palette("QMenuBar")
                           : palette == 'v' ? QApplication::palette("QAbstractItemView")
                                            : style()->alternativePalette();
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
        // A combo box's popup list and an editor inside a view are lighter than views.
        QComboBox combo;
        combo.view()->ensurePolished();
        QCOMPARE(combo.view()->palette().color(QPalette::Base), grey(240));
        QTableView table;
        table.ensurePolished();
        QCOMPARE(table.palette().color(QPalette::Base), grey(210));
        auto *editor = new QWidget(table.viewport());
        editor->setPalette(QPalette(Qt::blue));
        style()->polish(editor);
        QCOMPARE(editor->palette().color(QPalette::Base), grey(240));
    }
    void metricsAndHints_data()
    {
        QTest::addColumn<bool>("hint");
        QTest::addColumn<int>("which");
        QTest::addColumn<int>("value");
        const std::pair<int, std::vector<S::PixelMetric>> metrics[] = {
            {2, {S::PM_ButtonDefaultIndicator}},
            {0, {S::PM_ButtonShiftHorizontal, S::PM_ButtonShiftVertical, S::PM_DockWidgetHandleExtent,
                 S::PM_DockWidgetFrameWidth, S::PM_TabBarTabOverlap, S::PM_MenuBarPanelWidth,
                 S::PM_MenuBarItemSpacing, S::PM_TabBarTabShiftHorizontal, S::PM_TabBarTabShiftVertical,
                 S::PM_ToolBarFrameWidth, S::PM_ToolBarItemSpacing}},
            {1, {S::PM_DefaultFrameWidth, S::PM_SpinBoxFrameWidth, S::PM_ProgressBarChunkWidth,
                 S::PM_ToolBarItemMargin}},
            {-1, {S::PM_MaximumDragDistance}},
            {16, {S::PM_ScrollBarExtent, S::PM_TabBarScrollButtonWidth, S::PM_ToolBarIconSize, S::PM_SmallIconSize,
                  S::PM_TabBarIconSize}},
            {22, {S::PM_ScrollBarSliderMin}},
            {13, {S::PM_SliderControlThickness, S::PM_SliderLength, S::PM_IndicatorWidth, S::PM_IndicatorHeight,
                  S::PM_ExclusiveIndicatorWidth, S::PM_ExclusiveIndicatorHeight}},
            {3, {S::PM_SplitterWidth}},
            {10, {S::PM_LayoutHorizontalSpacing, S::PM_LayoutVerticalSpacing}},
            {24, {S::PM_LargeIconSize, S::PM_ButtonIconSize}},
        };
        for (const auto &[value, list] : metrics)
            for (S::PixelMetric m : list)
                QTest::newRow(enumName(m)) << false << int(m) << value;
        const std::pair<int, std::vector<S::StyleHint>> hints[] = {
            {0, {S::SH_EtchDisabledText, S::SH_Slider_SnapToValue, S::SH_Menu_AllowActiveAndDisabled,
                 S::SH_MenuBar_AltKeyNavigation, S::SH_ToolBox_SelectedPageTitleBold, S::SH_UnderlineShortcut,
                 S::SH_ItemView_ShowDecorationSelected}},
            {1, {S::SH_PrintDialog_RightAlignButtons, S::SH_MainWindow_SpaceBelowMenuBar,
                 S::SH_FontDialog_SelectAssociatedText, S::SH_ComboBox_ListMouseTracking, S::SH_Menu_MouseTracking,
                 S::SH_MenuBar_MouseTracking, S::SH_Slider_StopMouseOverSlider, S::SH_Button_FocusPolicy}},
            {30, {S::SH_Menu_SubMenuPopupDelay}},
        };
        for (const auto &[value, list] : hints)
            for (S::StyleHint h : list)
                QTest::newRow(enumName(h)) << true << int(h) << value;
    }
    void metricsAndHints()
    {
        QFETCH(bool, hint);
        QFETCH(int, which);
        QFETCH(int, value);
        QCOMPARE(hint ? style()->styleHint(S::StyleHint(which)) : style()->pixelMetric(S::PixelMetric(which)), value);
    }
    void metricsThatDependOnTheWidget()
    {
        // Qt 6's layout margins stand in for the default margins: windows 10, nested layouts none.
        QWidget window;
        QWidget child(&window);
        QCOMPARE(style()->pixelMetric(S::PM_LayoutLeftMargin, nullptr, &window), 10);
        QCOMPARE(style()->pixelMetric(S::PM_LayoutBottomMargin, nullptr, &child), 0);
        QStyleOption windowOption;
        windowOption.state = S::State_Window;
        QCOMPARE(style()->pixelMetric(S::PM_LayoutTopMargin, &windowOption, &child), 10);
        // 100 x 33: 20 pixels beside a horizontal slider's 13-pixel handle, 87 beside a vertical one's.
        QStyleOptionSlider slider;
        slider.rect = QRect(0, 0, 100, 33);
        const struct { Qt::Orientation orientation; QSlider::TickPosition ticks; int offset; } cases[] = {
            {Qt::Horizontal, QSlider::TicksAbove, 20}, {Qt::Horizontal, QSlider::TicksBothSides, 10},
            {Qt::Horizontal, QSlider::TicksBelow, 10}, {Qt::Vertical, QSlider::TicksLeft, 87},
            {Qt::Vertical, QSlider::TicksRight, 43}};
        for (const auto &c : cases) {
            slider.orientation = c.orientation;
            slider.tickPosition = c.ticks;
            QCOMPARE(style()->pixelMetric(S::PM_SliderTickmarkOffset, &slider), c.offset);
        }
    }
    void messageBoxIcons_data()
    {
        QTest::addColumn<S::StandardPixmap>("icon");
        QTest::addColumn<QMessageBox::Icon>("box");
        QTest::addColumn<QColor>("mark"); // the colour of the body or the sign
        QTest::newRow("information") << S::SP_MessageBoxInformation << QMessageBox::Information << QColor(Qt::blue);
        QTest::newRow("warning") << S::SP_MessageBoxWarning << QMessageBox::Warning << QColor(Qt::yellow);
        QTest::newRow("critical") << S::SP_MessageBoxCritical << QMessageBox::Critical << QColor(Qt::red);
        QTest::newRow("question") << S::SP_MessageBoxQuestion << QMessageBox::Question << QColor(Qt::blue);
    }
    void messageBoxIcons()
    {
        QFETCH(S::StandardPixmap, icon);
        QFETCH(QMessageBox::Icon, box);
        QFETCH(QColor, mark);
        const QPixmap pm = style()->standardPixmap(icon);
        QVERIFY(!pm.isNull());
        QCOMPARE(pm.size(), QSize(32, 32));
        const QImage image = pm.toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QVERIFY(countPixels(image, qRgb(0x99, 0x99, 0x99)) > 10); // the drop shadow
        QVERIFY(countPixels(image, mark.rgb()) > 10);
        QVERIFY(countPixels(image, [](QRgb c) { return qAlpha(c) > 200 && qGray(c) < 60 && qBlue(c) < 70; }) > 10);
        // Message boxes show the very same picture.
        QMessageBox messageBox;
        messageBox.setIcon(box);
        QCOMPARE(messageBox.iconPixmap().toImage().convertToFormat(QImage::Format_ARGB32), image);
    }
    void extensionIconsAreCachedPerDirection()
    {
        QStyleOption ltr, rtl;
        rtl.direction = Qt::RightToLeft;
        for (S::StandardPixmap sp : {S::SP_ToolBarHorizontalExtensionButton, S::SP_ToolBarVerticalExtensionButton}) {
            const QIcon first = style()->standardIcon(sp, &ltr);
            QVERIFY(!first.isNull());
            QCOMPARE(style()->standardIcon(sp, &ltr).cacheKey(), first.cacheKey());
            QCOMPARE(style()->standardIcon(sp, &rtl).cacheKey(), style()->standardIcon(sp, &rtl).cacheKey());
            QVERIFY(style()->standardIcon(sp, &rtl).cacheKey() != first.cacheKey());
        }
        QVERIFY(style()->standardIcon(S::SP_ToolBarHorizontalExtensionButton, &ltr).cacheKey()
                != style()->standardIcon(S::SP_ToolBarVerticalExtensionButton, &ltr).cacheKey());
    }
    void generatedIconPixmapChangesOnlyDisabled()
    {
        QPixmap pm(16, 16);
        pm.fill(Qt::red);
        QStyleOption option;
        option.palette = style()->standardPalette();
        for (QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Selected})
            QCOMPARE(style()->generatedIconPixmap(mode, pm, &option).cacheKey(), pm.cacheKey());
        QCommonStyle common;
        QCOMPARE(style()->generatedIconPixmap(QIcon::Disabled, pm, &option).toImage(),
                 common.generatedIconPixmap(QIcon::Disabled, pm, &option).toImage());
    }
    void subControlRects_data() { addRows(RECTS); }
    void subControlRects()
    {
        QFETCH(int, row);
        const SubRect &r = RECTS[row];
        QStyleOptionComplex option;
        option.rect = r.rect;
        option.direction = r.direction;
        QCOMPARE(style()->subControlRect(r.control, &option, r.sub), r.expected);
    }
    void sizesFromContents_data()
    {
        QTest::addColumn<S::ContentsType>("type");
        QTest::addColumn<QString>("what");
        QTest::addColumn<QSize>("contents");
        QTest::addColumn<QSize>("expected"); // -1: not this test's business
        const QFontMetrics fm(QApplication::font());
        const int extra = qMax(2 * qMax(fm.leading(), 1) - fm.leading() - 2, 0);
        const int line = fm.height() + 8; // a menu item's text line with margins and frames
        const QSize small(20, 10), item(40, 14);
        QTest::newRow("push button") << S::CT_PushButton << "" << small << QSize(75, 23);
        QTest::newRow("auto-default button") << S::CT_PushButton << "auto" << small << QSize(77, 25);
        QTest::newRow("button with icon: height only") << S::CT_PushButton << "icon" << small << QSize(-1, 23);
        QTest::newRow("tool button") << S::CT_ToolButton << "" << QSize(16, 16) << QSize(23, 22);
        QTest::newRow("combo, framed") << S::CT_ComboBox << "frame" << QSize(50, 16) << QSize(69, 20);
        QTest::newRow("combo, no frame") << S::CT_ComboBox << "" << QSize(50, 16) << QSize(66, 20);
        QTest::newRow("combo, tall") << S::CT_ComboBox << "frame" << QSize(50, 30) << QSize(83, 32 + extra);
        QTest::newRow("spin box at least 20") << S::CT_SpinBox << "" << QSize(40, 4) << QSize(-1, 20);
        QTest::newRow("menu bar item") << S::CT_MenuBarItem << "" << QSize(30, 15) << QSize(42, 19);
        QTest::newRow("menu bar item, empty") << S::CT_MenuBarItem << "" << QSize(0, 0) << QSize(0, 0);
        QTest::newRow("menu separator") << S::CT_MenuItem << "separator" << item << QSize(10, 2);
        QTest::newRow("menu item") << S::CT_MenuItem << "" << item << QSize(72, line);
        QTest::newRow("menu item, shortcut") << S::CT_MenuItem << "tab" << item << QSize(92, line);
        QTest::newRow("menu item, sub-menu") << S::CT_MenuItem << "sub" << item << QSize(72 + (line - 4) / 2 + 6, line);
        QTest::newRow("menu item, icons") << S::CT_MenuItem << "icon" << item << QSize(70, qMax(line, 20));
        QTest::newRow("menu item, no icon column") << S::CT_MenuItem << "-1" << item << QSize(72, line);
        QTest::newRow("menu item, tall contents") << S::CT_MenuItem << "" << QSize(40, 50) << QSize(72, 50);
    }
    void sizesFromContents()
    {
        QFETCH(S::ContentsType, type);
        QFETCH(QString, what);
        QFETCH(QSize, contents);
        QFETCH(QSize, expected);
        QStyleOptionButton button;
        if (what == "auto")
            button.features = QStyleOptionButton::AutoDefaultButton;
        QStyleOptionComboBox combo;
        combo.frame = what == "frame";
        QStyleOptionMenuItem item;
        item.text = what == "tab" ? QStringLiteral("Open\tCtrl+O") : QStringLiteral("Open");
        item.menuItemType = what == "sub"         ? QStyleOptionMenuItem::SubMenu
                            : what == "separator" ? QStyleOptionMenuItem::Separator
                                                  : QStyleOptionMenuItem::Normal;
        item.maxIconWidth = what == "icon" ? 16 : what == "-1" ? -1 : 0;
        if (what == "icon")
            button.icon = item.icon = redIcon();
        QStyleOptionSpinBox spin;
        QStyleOption *option = &spin;
        if (type == S::CT_PushButton)
            option = &button;
        else if (type == S::CT_ComboBox)
            option = &combo;
        else if (type == S::CT_MenuItem)
            option = &item;
        option->fontMetrics = QFontMetrics(QApplication::font());
        const QSize size = style()->sizeFromContents(type, option, contents);
        if (expected.width() >= 0)
            QCOMPARE(size.width(), expected.width());
        else if (type == S::CT_PushButton)
            QVERIFY(size.width() < 75 && size.width() > contents.width());
        QCOMPARE(size.height(), expected.height());
    }
    void drawingHelpers()
    {
        QImage image = blankImage(QSize(4, 256));
        QPainter p(&image);
        const QPen pen(Qt::green);
        p.setPen(pen);
        RynStyle::drawVerticalGradient(&p, image.rect(), QColor(0, 0, 100), QColor(255, 128, 100));
        QCOMPARE(p.pen(), pen);
        p.end();
        // Steps of 255/256 per row in 16.16 fixed point: the last row is 254, not 255.
        QCOMPARE(image.pixel(0, 0), qRgb(0, 0, 100));
        QCOMPARE(image.pixel(3, 128), qRgb(127, 64, 100));
        QCOMPARE(image.pixel(1, 255), qRgb(254, 127, 100));
        // Arrows of size 7: 7 across, 6 along, centred, a triangle rather than a box.
        for (const auto element : {S::PE_IndicatorArrowDown, S::PE_IndicatorArrowLeft}) {
            QImage arrow = blankImage(QSize(21, 21));
            QStyleOption option;
            option.rect = arrow.rect();
            option.palette.setColor(QPalette::WindowText, Qt::red);
            p.begin(&arrow);
            style()->drawPrimitive(element, &option, &p);
            p.end();
            QRect box;
            for (int y = 0; y < 21; ++y)
                for (int x = 0; x < 21; ++x)
                    box |= arrow.pixel(x, y) == qRgb(255, 0, 0) ? QRect(x, y, 1, 1) : QRect();
            QCOMPARE(box, element == S::PE_IndicatorArrowDown ? QRect(7, 7, 7, 6) : QRect(7, 7, 6, 7));
            QVERIFY(countPixels(arrow, qRgb(255, 0, 0)) < 42);
        }
        QImage circle = blankImage(QSize(21, 21));
        p.begin(&circle);
        RynStyle::drawCircle(&p, QPoint(10, 10), Qt::blue, Qt::yellow);
        p.end();
        QCOMPARE(circle.pixel(10, 10), qRgb(255, 255, 0));
        QCOMPARE(circle.pixel(4, 10), qRgb(0, 0, 255));  // (-6, 0) on the outline
        QCOMPARE(circle.pixel(10, 16), qRgb(0, 0, 255)); // (0, 6)
        QCOMPARE(circle.pixel(4, 7), SENTINEL);          // (-6, -3): the corner is cut
    }
    void primitiveColours_data() { addRows(COLOURS); }
    void primitiveColours()
    {
        QFETCH(int, row);
        const Colour &r = COLOURS[row];
        const QImage image = render(r.element, S::State_Enabled | S::State(r.state));
        if (r.at.x() >= 0)
            QCOMPARE(image.pixel(r.at) == r.color.rgb(), r.present);
        else
            QCOMPARE(countPixels(image, r.color.rgb()) > 0, r.present);
    }
    void extendBoxFrameShowsFocus()
    {
        for (const bool focus : {false, true}) {
            QImage image = blankImage(QSize(100, 20));
            QStyleOptionComplex option;
            option.rect = image.rect();
            option.palette = style()->standardPalette();
            option.state = S::State_Enabled | (focus ? S::State_HasFocus : S::State_None);
            QPainter p(&image);
            style()->drawComplexControl(RynStyle::CC_ExtendBox, &option, &p);
            p.end();
            const QRgb frame = focus ? RynStyle::focus_color.rgb() : DARK.rgb();
            QCOMPARE(image.pixel(0, 0), frame);
            QCOMPARE(image.pixel(99, 19), frame);
            QCOMPARE(image.pixel(50, 10), SENTINEL);           // the field itself is the host's
            QCOMPARE(image.pixel(80, 10), DARK.rgb());         // the line before the square
            QCOMPARE(image.pixel(81, 1), grey(180).rgb());     // its gradient starts at Mid ...
            QVERIFY(countPixels(image, grey(240).rgb()) > 10); // ... and holds a light arrow
        }
    }
    void paintingEveryElement_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("state");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        const int busy = S::State_Enabled | S::State_HasFocus | S::State_Sunken | S::State_On | S::State_Selected
                         | S::State_MouseOver | S::State_Open | S::State_AutoRaise | S::State_NoChange;
        for (int i = 0; i < int(std::size(ELEMENTS)); ++i) {
            const char *name = elementName(ELEMENTS[i]);
            QTest::addRow("%s %d enabled", name, i) << i << int(S::State_Enabled) << Qt::LeftToRight;
            QTest::addRow("%s %d disabled", name, i) << i << int(S::State_None) << Qt::LeftToRight;
            QTest::addRow("%s %d busy", name, i) << i << busy << Qt::LeftToRight;
            QTest::addRow("%s %d right to left", name, i) << i << int(S::State_Enabled) << Qt::RightToLeft;
        }
    }
    void paintingEveryElement()
    {
        QFETCH(int, index);
        QFETCH(int, state);
        QFETCH(Qt::LayoutDirection, direction);
        const Element &e = ELEMENTS[index];
        QImage image = blankImage(e.size);
        const Option option = e.make(e.variant, e.size);
        option->rect = image.rect();
        option->palette = style()->standardPalette();
        option->fontMetrics = QFontMetrics(QApplication::font());
        option->state |= S::State(state);
        option->direction = direction;
        auto *complex = qstyleoption_cast<QStyleOptionComplex *>(option.get());
        if (complex) {
            complex->subControls = S::SC_All;
            complex->activeSubControls = (option->state & S::State_Sunken) ? S::SC_All : S::SC_None;
        }
        QPainter p(&image);
        const QPen pen(Qt::cyan);
        const QBrush brush(Qt::yellow);
        p.setPen(pen);
        p.setBrush(brush);
        if (e.kind == Primitive)
            style()->drawPrimitive(S::PrimitiveElement(e.element), option.get(), &p);
        else if (e.kind == Control)
            style()->drawControl(S::ControlElement(e.element), option.get(), &p);
        else
            style()->drawComplexControl(S::ComplexControl(e.element), complex, &p);
        // Drawing leaves the painter as it found it.
        QCOMPARE(p.pen(), pen);
        QCOMPARE(p.brush(), brush);
        QVERIFY(!p.hasClipping());
        p.end();
        QCOMPARE(countPixels(image, SENTINEL) != image.width() * image.height(), !e.drawsNothing);
    }
};

int main(int argc, char **argv)
{
    Application app(argc, argv);
    TestStyle test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_style.moc"
