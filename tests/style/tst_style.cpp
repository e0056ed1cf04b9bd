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

namespace {

const QRgb SENTINEL = qRgb(255, 0, 255);
const QColor DARK(112, 112, 112);

RynStyle *style()
{
    return qobject_cast<RynStyle *>(QApplication::style());
}

QColor grey(int level)
{
    return QColor(level, level, level);
}

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
QImage render(QStyle::PrimitiveElement element, QStyle::State state, QSize size = QSize(30, 20))
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

template <class E> const char *enumName(E value)
{
    return QMetaEnum::fromType<E>().valueToKey(value);
}

// ---- Every element the style draws itself; `variant` picks a flavour of its option.

enum Kind { Primitive, Control, Complex };

struct Element
{
    Kind kind;
    uint element;
    QSize size;
    int variant = 0;
    bool drawsNothing = false;
};

using S = QStyle;
const QSize BOX(40, 30), SMALL(16, 16), BAR(8, 30), WIDE(120, 22), BUTTON(80, 26);

const Element ELEMENTS[] = {
    {Control, S::CE_PushButton, BUTTON}, {Control, S::CE_PushButtonBevel, BUTTON},
    {Control, S::CE_PushButtonLabel, BUTTON},
    {Control, S::CE_TabBarTabShape, {70, 22}, QTabBar::RoundedNorth},
    {Control, S::CE_TabBarTabShape, {70, 22}, QTabBar::RoundedSouth},
    {Control, S::CE_TabBarTabShape, {22, 70}, QTabBar::RoundedWest},
    {Control, S::CE_TabBarTabShape, {22, 70}, QTabBar::RoundedEast},
    {Control, S::CE_ProgressBarGroove, WIDE}, {Control, S::CE_ProgressBarContents, WIDE},
    {Control, S::CE_ProgressBarContents, WIDE, 1},      // busy
    {Control, S::CE_ProgressBarContents, {20, 100}, 2}, // vertical, inverted
    {Control, S::CE_MenuItem, WIDE, QStyleOptionMenuItem::Normal},
    {Control, S::CE_MenuItem, WIDE, QStyleOptionMenuItem::SubMenu},
    {Control, S::CE_MenuItem, {120, 6}, QStyleOptionMenuItem::Separator},
    {Control, S::CE_MenuItem, {120, 12}, QStyleOptionMenuItem::Scroller},
    {Control, S::CE_MenuTearoff, {120, 8}}, {Control, S::CE_MenuBarItem, {50, 22}},
    {Control, S::CE_MenuBarEmptyArea, {50, 22}}, {Control, S::CE_HeaderSection, {80, 22}},
    {Control, S::CE_HeaderLabel, {80, 22}}, {Control, S::CE_SizeGrip, SMALL, Qt::BottomRightCorner},
    {Control, S::CE_SizeGrip, SMALL, Qt::TopLeftCorner}, {Control, S::CE_Splitter, {3, 60}},
    {Control, S::CE_ComboBoxLabel, WIDE},
    {Complex, S::CC_SpinBox, {80, 22}}, {Complex, S::CC_SpinBox, {80, 22}, 1}, // plus and minus
    {Complex, S::CC_ComboBox, WIDE}, {Complex, S::CC_ComboBox, WIDE, 1},      // editable
    {Complex, S::CC_ScrollBar, {120, 16}}, {Complex, S::CC_ScrollBar, {16, 120}},
    {Complex, S::CC_Slider, {120, 30}}, {Complex, S::CC_Slider, {30, 120}},
    {Complex, S::CC_ToolButton, {30, 28}}, {Complex, S::CC_ToolButton, {44, 28}, 1}, // menu button
    {Complex, S::CC_TitleBar, {200, 22}}, {Complex, RynStyle::CC_ExtendBox, WIDE},
    {Primitive, S::PE_Frame, BOX}, {Primitive, S::PE_FrameMenu, BOX}, {Primitive, S::PE_FrameTabWidget, BOX},
    {Primitive, S::PE_FrameWindow, BOX}, {Primitive, S::PE_PanelToolBar, BOX},
    {Primitive, S::PE_FrameStatusBarItem, BOX, 0, true}, {Primitive, S::PE_FrameDefaultButton, BOX},
    {Primitive, S::PE_FrameDockWidget, BOX}, {Primitive, S::PE_FrameFocusRect, BOX},
    {Primitive, S::PE_FrameLineEdit, BOX}, {Primitive, S::PE_PanelButtonCommand, BOX},
    {Primitive, S::PE_PanelButtonTool, BOX}, {Primitive, S::PE_IndicatorArrowDown, SMALL},
    {Primitive, S::PE_IndicatorArrowLeft, SMALL}, {Primitive, S::PE_IndicatorArrowRight, SMALL},
    {Primitive, S::PE_IndicatorArrowUp, SMALL}, {Primitive, S::PE_IndicatorBranch, SMALL},
    {Primitive, S::PE_IndicatorItemViewItemCheck, SMALL}, {Primitive, S::PE_IndicatorCheckBox, SMALL},
    {Primitive, S::PE_IndicatorHeaderArrow, SMALL}, {Primitive, S::PE_IndicatorProgressChunk, SMALL},
    {Primitive, S::PE_IndicatorRadioButton, SMALL}, {Primitive, S::PE_IndicatorToolBarHandle, BAR},
    {Primitive, S::PE_IndicatorToolBarSeparator, BAR}, {Primitive, S::PE_IndicatorTabTear, BAR},
    {Primitive, S::PE_PanelScrollAreaCorner, SMALL},
};

constexpr quint64 key(Kind kind, uint element)
{
    return quint64(kind) << 32 | element;
}

// Shared, so that the option is deleted as what it was made: QStyleOption
// has no virtual destructor.
std::shared_ptr<QStyleOption> makeOption(const Element &e)
{
    switch (key(e.kind, e.element)) {
    case key(Control, S::CE_PushButton):
    case key(Control, S::CE_PushButtonBevel):
    case key(Control, S::CE_PushButtonLabel):
    case key(Primitive, S::PE_PanelButtonCommand): {
        auto o = std::make_shared<QStyleOptionButton>();
        o->text = QStringLiteral("OK");
        o->icon = redIcon();
        o->iconSize = QSize(16, 16);
        o->features = QStyleOptionButton::DefaultButton | QStyleOptionButton::HasMenu;
        return o;
    }
    case key(Control, S::CE_TabBarTabShape): {
        auto o = std::make_shared<QStyleOptionTab>();
        o->shape = QTabBar::Shape(e.variant);
        return o;
    }
    case key(Control, S::CE_ProgressBarGroove):
    case key(Control, S::CE_ProgressBarContents): {
        auto o = std::make_shared<QStyleOptionProgressBar>();
        o->maximum = e.variant == 1 ? 0 : 100;
        o->progress = 40;
        o->invertedAppearance = e.variant == 2;
        o->state = e.variant == 2 ? S::State_None : S::State_Horizontal;
        return o;
    }
    case key(Control, S::CE_MenuItem):
    case key(Control, S::CE_MenuBarItem): {
        auto o = std::make_shared<QStyleOptionMenuItem>();
        o->text = QStringLiteral("&Open\tCtrl+O");
        o->maxIconWidth = 16;
        o->menuItemType = QStyleOptionMenuItem::MenuItemType(e.variant);
        o->checkType = QStyleOptionMenuItem::Exclusive;
        o->checked = true;
        return o;
    }
    case key(Control, S::CE_HeaderSection):
    case key(Control, S::CE_HeaderLabel):
    case key(Primitive, S::PE_IndicatorHeaderArrow): {
        auto o = std::make_shared<QStyleOptionHeader>();
        o->text = QStringLiteral("x");
        o->icon = redIcon();
        o->sortIndicator = QStyleOptionHeader::SortDown;
        return o;
    }
    case key(Control, S::CE_SizeGrip): {
        auto o = std::make_shared<QStyleOptionSizeGrip>();
        o->corner = Qt::Corner(e.variant);
        return o;
    }
    case key(Control, S::CE_ComboBoxLabel):
    case key(Complex, S::CC_ComboBox): {
        auto o = std::make_shared<QStyleOptionComboBox>();
        o->currentText = QStringLiteral("Item");
        o->currentIcon = redIcon();
        o->editable = e.variant == 1;
        return o;
    }
    case key(Complex, S::CC_SpinBox): {
        auto o = std::make_shared<QStyleOptionSpinBox>();
        o->buttonSymbols = e.variant == 1 ? QAbstractSpinBox::PlusMinus : QAbstractSpinBox::UpDownArrows;
        o->stepEnabled = QAbstractSpinBox::StepUpEnabled;
        return o;
    }
    case key(Complex, S::CC_ScrollBar):
    case key(Complex, S::CC_Slider): {
        auto o = std::make_shared<QStyleOptionSlider>();
        o->orientation = e.size.width() > e.size.height() ? Qt::Horizontal : Qt::Vertical;
        o->maximum = 100;
        o->sliderPosition = o->sliderValue = 30;
        o->pageStep = 10;
        o->tickPosition = QSlider::TicksBothSides;
        return o;
    }
    case key(Complex, S::CC_ToolButton): {
        auto o = std::make_shared<QStyleOptionToolButton>();
        o->icon = redIcon();
        o->iconSize = QSize(16, 16);
        o->features = e.variant == 1 ? QStyleOptionToolButton::MenuButtonPopup : QStyleOptionToolButton::HasMenu;
        return o;
    }
    case key(Complex, S::CC_TitleBar): {
        auto o = std::make_shared<QStyleOptionTitleBar>();
        o->text = QStringLiteral("A window");
        o->titleBarFlags = Qt::Window | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint
                           | Qt::WindowContextHelpButtonHint;
        o->titleBarState = S::State_Active;
        o->icon = redIcon();
        return o;
    }
    case key(Complex, RynStyle::CC_ExtendBox):
        return std::make_shared<QStyleOptionComplex>();
    case key(Primitive, S::PE_FrameFocusRect):
        return std::make_shared<QStyleOptionFocusRect>();
    case key(Primitive, S::PE_FrameLineEdit):
        return std::make_shared<QStyleOptionFrame>();
    default:
        break;
    }
    auto o = std::make_shared<QStyleOption>();
    o->state = e.element == S::PE_IndicatorBranch ? S::State_Children : S::State_Horizontal;
    return o;
}

QString elementName(const Element &e)
{
    if (e.kind == Primitive)
        return QString::fromLatin1(enumName(QStyle::PrimitiveElement(e.element)));
    if (e.kind == Control)
        return QString::fromLatin1(enumName(QStyle::ControlElement(e.element)));
    return e.element == RynStyle::CC_ExtendBox ? QStringLiteral("CC_ExtendBox")
                                                 : QString::fromLatin1(enumName(QStyle::ComplexControl(e.element)));
}

} // namespace

class TestStyle : public QObject
{
    Q_OBJECT

private slots:
    void applicationInstallsTheStyle()
    {
        QVERIFY(style());
        QCOMPARE(RynStyle::focus_color, QColor(170, 30, 30, 255));
        QCOMPARE(uint(RynStyle::CC_ExtendBox), uint(QStyle::CC_CustomBase));
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
        const struct { char palette; P::ColorGroup group; P::ColorRole role; QColor color; } rows[] = {
            {'s', P::Active, P::Window, grey(210)},          {'s', P::Inactive, P::Button, grey(210)},
            {'s', P::Active, P::Base, grey(240)},            {'s', P::Active, P::AlternateBase, grey(240)},
            {'s', P::Active, P::WindowText, text},           {'s', P::Inactive, P::Text, text},
            {'s', P::Active, P::ButtonText, text},           {'s', P::Active, P::Highlight, highlight},
            {'s', P::Active, P::HighlightedText, grey(240)}, {'s', P::Active, P::BrightText, grey(240)},
            {'s', P::Active, P::Link, focus},                {'s', P::Active, P::LinkVisited, focus},
            {'s', P::Active, P::Light, grey(240)},           {'s', P::Active, P::Mid, grey(180)},
            {'s', P::Active, P::Shadow, grey(150)},          {'s', P::Disabled, P::Dark, grey(112)},
            {'s', P::Disabled, P::WindowText, grey(150)},    {'s', P::Disabled, P::Text, grey(150)},
            {'s', P::Disabled, P::ButtonText, grey(150)},    {'s', P::Disabled, P::HighlightedText, grey(150)},
            {'s', P::Disabled, P::Window, grey(210)},        {'s', P::Active, P::Midlight, QColor(0, 255, 0)},
            {'s', P::Active, P::ToolTipBase, grey(240)},     {'s', P::Active, P::ToolTipText, text},
            {'b', P::Active, P::Button, grey(180)},          {'b', P::Disabled, P::Window, grey(180)},
            {'b', P::Active, P::Base, grey(240)},            {'v', P::Active, P::Base, grey(210)},
            {'v', P::Active, P::Window, grey(210)},          {'a', P::Active, P::WindowText, Qt::black},
            {'a', P::Active, P::Window, grey(192)},          {'a', P::Active, P::Light, Qt::white},
            {'a', P::Active, P::Dark, grey(128)},            {'a', P::Active, P::Mid, grey(190)},
            {'a', P::Active, P::Text, Qt::black},            {'a', P::Active, P::Base, Qt::white},
            {'a', P::Active, P::Highlight, highlight},       {'a', P::Active, P::HighlightedText, grey(240)},
            {'a', P::Active, P::Link, focus},
        };
        for (const auto &r : rows)
            QTest::addRow("%c %s %s", r.palette, enumName(r.group), enumName(r.role))
                << r.palette << r.group << r.role << r.color;
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

    void pixelMetrics_data()
    {
        QTest::addColumn<QStyle::PixelMetric>("metric");
        QTest::addColumn<int>("value");
        const std::pair<int, std::vector<S::PixelMetric>> groups[] = {
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
        for (const auto &[value, metrics] : groups)
            for (S::PixelMetric m : metrics)
                QTest::newRow(enumName(m)) << m << value;
    }

    void pixelMetrics()
    {
        QFETCH(QStyle::PixelMetric, metric);
        QFETCH(int, value);
        QCOMPARE(style()->pixelMetric(metric), value);
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

    void styleHints_data()
    {
        QTest::addColumn<QStyle::StyleHint>("hint");
        QTest::addColumn<int>("value");
        const std::pair<int, std::vector<S::StyleHint>> groups[] = {
            {0, {S::SH_EtchDisabledText, S::SH_Slider_SnapToValue, S::SH_Menu_AllowActiveAndDisabled,
                 S::SH_MenuBar_AltKeyNavigation, S::SH_ToolBox_SelectedPageTitleBold, S::SH_UnderlineShortcut,
                 S::SH_ItemView_ShowDecorationSelected}},
            {1, {S::SH_PrintDialog_RightAlignButtons, S::SH_MainWindow_SpaceBelowMenuBar,
                 S::SH_FontDialog_SelectAssociatedText, S::SH_ComboBox_ListMouseTracking, S::SH_Menu_MouseTracking,
                 S::SH_MenuBar_MouseTracking, S::SH_Slider_StopMouseOverSlider, S::SH_Button_FocusPolicy}},
            {30, {S::SH_Menu_SubMenuPopupDelay}},
        };
        for (const auto &[value, hints] : groups)
            for (S::StyleHint h : hints)
                QTest::newRow(enumName(h)) << h << value;
    }

    void styleHints()
    {
        QFETCH(QStyle::StyleHint, hint);
        QFETCH(int, value);
        QCOMPARE(style()->styleHint(hint), value);
    }

    void messageBoxIcons_data()
    {
        QTest::addColumn<QStyle::StandardPixmap>("icon");
        QTest::addColumn<QMessageBox::Icon>("box");
        QTest::addColumn<QColor>("mark"); // the colour of the body or the sign
        QTest::newRow("information") << S::SP_MessageBoxInformation << QMessageBox::Information << QColor(Qt::blue);
        QTest::newRow("warning") << QStyle::SP_MessageBoxWarning << QMessageBox::Warning << QColor(Qt::yellow);
        QTest::newRow("critical") << QStyle::SP_MessageBoxCritical << QMessageBox::Critical << QColor(Qt::red);
        QTest::newRow("question") << QStyle::SP_MessageBoxQuestion << QMessageBox::Question << QColor(Qt::blue);
    }

    void messageBoxIcons()
    {
        QFETCH(QStyle::StandardPixmap, icon);
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
        for (QStyle::StandardPixmap sp :
             {QStyle::SP_ToolBarHorizontalExtensionButton, QStyle::SP_ToolBarVerticalExtensionButton}) {
            const QIcon first = style()->standardIcon(sp, &ltr);
            QVERIFY(!first.isNull());
            QCOMPARE(style()->standardIcon(sp, &ltr).cacheKey(), first.cacheKey());
            QCOMPARE(style()->standardIcon(sp, &rtl).cacheKey(), style()->standardIcon(sp, &rtl).cacheKey());
            QVERIFY(style()->standardIcon(sp, &rtl).cacheKey() != first.cacheKey());
        }
        QVERIFY(style()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, &ltr).cacheKey()
                != style()->standardIcon(QStyle::SP_ToolBarVerticalExtensionButton, &ltr).cacheKey());
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

    void subControlRects_data()
    {
        QTest::addColumn<QStyle::ComplexControl>("control");
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::addColumn<QStyle::SubControl>("sub");
        QTest::addColumn<QRect>("expected");
        const QRect s(0, 0, 100, 22), c(5, 3, 120, 20);
        const auto spin = S::CC_SpinBox, combo = S::CC_ComboBox;
        const auto ltr = Qt::LeftToRight, rtl = Qt::RightToLeft;
        QTest::newRow("spin up") << spin << s << ltr << S::SC_SpinBoxUp << QRect(78, 1, 21, 10);
        QTest::newRow("spin down") << spin << s << ltr << S::SC_SpinBoxDown << QRect(78, 11, 21, 10);
        QTest::newRow("spin frame") << spin << s << ltr << S::SC_SpinBoxFrame << s;
        QTest::newRow("spin edit") << spin << s << ltr << S::SC_SpinBoxEditField << QRect(1, 1, 77, 20);
        QTest::newRow("spin odd height") << spin << QRect(0, 0, 100, 23) << ltr << S::SC_SpinBoxDown
                                         << QRect(77, 11, 22, 11);
        QTest::newRow("spin buttons at least 8") << spin << QRect(0, 0, 60, 12) << ltr << S::SC_SpinBoxDown
                                                 << QRect(48, 9, 11, 2);
        QTest::newRow("spin moved") << spin << QRect(10, 5, 100, 22) << ltr << S::SC_SpinBoxUp << QRect(88, 6, 21, 10);
        QTest::newRow("spin right to left") << spin << s << rtl << S::SC_SpinBoxUp << QRect(1, 1, 21, 10);
        QTest::newRow("combo frame") << combo << c << ltr << S::SC_ComboBoxFrame << c;
        QTest::newRow("combo popup") << combo << c << ltr << S::SC_ComboBoxListBoxPopup << c;
        QTest::newRow("combo edit") << combo << c << ltr << S::SC_ComboBoxEditField << QRect(6, 4, 99, 18);
        QTest::newRow("combo arrow") << combo << c << ltr << S::SC_ComboBoxArrow << QRect(105, 4, 19, 18);
        QTest::newRow("combo arrow right to left") << combo << c << rtl << S::SC_ComboBoxArrow << QRect(6, 4, 19, 18);
    }

    void subControlRects()
    {
        QFETCH(QStyle::ComplexControl, control);
        QFETCH(QRect, rect);
        QFETCH(Qt::LayoutDirection, direction);
        QFETCH(QStyle::SubControl, sub);
        QFETCH(QRect, expected);
        QStyleOptionComplex option;
        option.rect = rect;
        option.direction = direction;
        QCOMPARE(style()->subControlRect(control, &option, sub), expected);
    }

    void sizesFromContents_data()
    {
        QTest::addColumn<QStyle::ContentsType>("type");
        QTest::addColumn<QString>("what");
        QTest::addColumn<QSize>("contents");
        QTest::addColumn<QSize>("expected"); // -1: not this test's business
        const QFontMetrics fm(QApplication::font());
        const int extra = qMax(2 * qMax(fm.leading(), 1) - fm.leading() - 2, 0);
        const int line = fm.height() + 8; // a menu item's text line with margins and frames
        const QSize small(20, 10);
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
        QTest::newRow("menu separator") << S::CT_MenuItem << "separator" << QSize(40, 14) << QSize(10, 2);
        QTest::newRow("menu item") << S::CT_MenuItem << "" << QSize(40, 14) << QSize(72, line);
        QTest::newRow("menu item, shortcut") << S::CT_MenuItem << "tab" << QSize(40, 14) << QSize(92, line);
        QTest::newRow("menu item, sub-menu") << S::CT_MenuItem << "sub" << QSize(40, 14)
                                             << QSize(72 + (line - 4) / 2 + 6, line);
        QTest::newRow("menu item, icons") << S::CT_MenuItem << "icon" << QSize(40, 14) << QSize(70, qMax(line, 20));
        QTest::newRow("menu item, no icon column") << S::CT_MenuItem << "-1" << QSize(40, 14) << QSize(72, line);
        QTest::newRow("menu item, tall contents") << S::CT_MenuItem << "" << QSize(40, 50) << QSize(72, 50);
    }

    void sizesFromContents()
    {
        QFETCH(QStyle::ContentsType, type);
        QFETCH(QString, what);
        QFETCH(QSize, contents);
        QFETCH(QSize, expected);
        QStyleOptionButton button;
        if (what == QLatin1String("auto"))
            button.features = QStyleOptionButton::AutoDefaultButton;
        QStyleOptionComboBox combo;
        combo.frame = what == QLatin1String("frame");
        QStyleOptionMenuItem item;
        item.text = what == QLatin1String("tab") ? QStringLiteral("Open\tCtrl+O") : QStringLiteral("Open");
        item.menuItemType = what == QLatin1String("sub")         ? QStyleOptionMenuItem::SubMenu
                            : what == QLatin1String("separator") ? QStyleOptionMenuItem::Separator
                                                                 : QStyleOptionMenuItem::Normal;
        item.maxIconWidth = what == QLatin1String("icon") ? 16 : what == QLatin1String("-1") ? -1 : 0;
        if (what == QLatin1String("icon"))
            button.icon = item.icon = redIcon();
        QStyleOptionSpinBox spin;
        QStyleOption *option = &spin;
        if (type == QStyle::CT_PushButton)
            option = &button;
        else if (type == QStyle::CT_ComboBox)
            option = &combo;
        else if (type == QStyle::CT_MenuItem)
            option = &item;
        option->fontMetrics = QFontMetrics(QApplication::font());
        const QSize size = style()->sizeFromContents(type, option, contents);
        if (expected.width() >= 0)
            QCOMPARE(size.width(), expected.width());
        else if (type == QStyle::CT_PushButton)
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

    void primitiveColours_data()
    {
        QTest::addColumn<S::PrimitiveElement>("element");
        QTest::addColumn<int>("state");
        QTest::addColumn<QPoint>("at"); // (-1, -1): anywhere
        QTest::addColumn<QColor>("color");
        QTest::addColumn<bool>("present");
        const QColor focus = RynStyle::focus_color, none = QColor::fromRgb(SENTINEL);
        const QPoint corner(0, 0), anywhere(-1, -1);
        const int on = S::State_On, hasFocus = S::State_HasFocus;
        QTest::newRow("frame ignores focus") << S::PE_Frame << hasFocus << corner << DARK << true;
        QTest::newRow("frame does not fill") << S::PE_Frame << 0 << QPoint(15, 10) << none << true;
        QTest::newRow("menu frame") << S::PE_FrameMenu << 0 << corner << DARK << true;
        QTest::newRow("tab widget frame") << S::PE_FrameTabWidget << 0 << corner << DARK << true;
        QTest::newRow("window frame") << S::PE_FrameWindow << 0 << corner << DARK << true;
        QTest::newRow("tool bar panel") << S::PE_PanelToolBar << 0 << QPoint(29, 19) << DARK << true;
        QTest::newRow("focus rectangle") << S::PE_FrameFocusRect << 0 << corner << focus << true;
        QTest::newRow("default button") << S::PE_FrameDefaultButton << 0 << corner << focus << true;
        QTest::newRow("line edit") << S::PE_FrameLineEdit << 0 << corner << DARK << true;
        QTest::newRow("line edit with focus") << S::PE_FrameLineEdit << hasFocus << corner << focus << true;
        QTest::newRow("command button") << S::PE_PanelButtonCommand << 0 << corner << DARK << true;
        QTest::newRow("command button with focus") << S::PE_PanelButtonCommand << hasFocus << corner << focus << true;
        QTest::newRow("command button gradient") << S::PE_PanelButtonCommand << 0 << QPoint(15, 1) << grey(237) << true;
        QTest::newRow("check box on") << S::PE_IndicatorCheckBox << on << anywhere << focus << true;
        QTest::newRow("check box off") << S::PE_IndicatorCheckBox << 0 << anywhere << focus << false;
        QTest::newRow("radio button on") << S::PE_IndicatorRadioButton << on << anywhere << focus << true;
        QTest::newRow("radio button off") << S::PE_IndicatorRadioButton << 0 << anywhere << focus << false;
        QTest::newRow("branch of a leaf") << S::PE_IndicatorBranch << 0 << anywhere << DARK << false;
        QTest::newRow("closed branch") << S::PE_IndicatorBranch << int(S::State_Children) << anywhere << DARK << true;
        QTest::newRow("open branch") << S::PE_IndicatorBranch << int(S::State_Children | S::State_Open) << anywhere
                                     << DARK << true;
    }

    void primitiveColours()
    {
        QFETCH(S::PrimitiveElement, element);
        QFETCH(int, state);
        QFETCH(QPoint, at);
        QFETCH(QColor, color);
        QFETCH(bool, present);
        const QImage image = render(element, S::State_Enabled | S::State(state));
        if (at.x() >= 0)
            QCOMPARE(image.pixel(at) == color.rgb(), present);
        else
            QCOMPARE(countPixels(image, color.rgb()) > 0, present);
    }

    void extendBoxFrameShowsFocus()
    {
        for (const bool focus : {false, true}) {
            QImage image = blankImage(QSize(100, 20));
            QStyleOptionComplex option;
            option.rect = image.rect();
            option.palette = style()->standardPalette();
            option.state = QStyle::State_Enabled | (focus ? QStyle::State_HasFocus : QStyle::State_None);
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
            const QByteArray name = elementName(ELEMENTS[i]).toLatin1() + ' ' + QByteArray::number(i);
            QTest::addRow("%s enabled", name.constData()) << i << int(S::State_Enabled) << Qt::LeftToRight;
            QTest::addRow("%s disabled", name.constData()) << i << int(S::State_None) << Qt::LeftToRight;
            QTest::addRow("%s busy", name.constData()) << i << busy << Qt::LeftToRight;
            QTest::addRow("%s right to left", name.constData()) << i << int(S::State_Enabled) << Qt::RightToLeft;
        }
    }

    void paintingEveryElement()
    {
        QFETCH(int, index);
        QFETCH(int, state);
        QFETCH(Qt::LayoutDirection, direction);
        const Element &e = ELEMENTS[index];
        QImage image = blankImage(e.size);
        const std::shared_ptr<QStyleOption> option = makeOption(e);
        option->rect = image.rect();
        option->palette = style()->standardPalette();
        option->fontMetrics = QFontMetrics(QApplication::font());
        option->state |= QStyle::State(state);
        option->direction = direction;
        if (auto *complex = qstyleoption_cast<QStyleOptionComplex *>(option.get())) {
            complex->subControls = QStyle::SC_All;
            complex->activeSubControls = (option->state & QStyle::State_Sunken) ? QStyle::SC_All : QStyle::SC_None;
        }
        QPainter p(&image);
        const QPen pen(Qt::cyan);
        const QBrush brush(Qt::yellow);
        p.setPen(pen);
        p.setBrush(brush);
        if (e.kind == Primitive)
            style()->drawPrimitive(QStyle::PrimitiveElement(e.element), option.get(), &p);
        else if (e.kind == Control)
            style()->drawControl(QStyle::ControlElement(e.element), option.get(), &p);
        else
            style()->drawComplexControl(QStyle::ComplexControl(e.element),
                                        static_cast<QStyleOptionComplex *>(option.get()), &p);
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
