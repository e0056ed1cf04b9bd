#include "gapp_style.h"
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QMenuBar>
#include <QPainter>
#include <QPainterPath>
#include <QPolygon>
#include <QStatusBar>
#include <QStyleOption>
#include <QToolTip>

namespace Zal {
namespace GApp {

const QColor RynStyle::focus_color(170, 30, 30, 255);

namespace {

const QColor kGreen(0, 255, 0);
const QColor kTextColor(49, 49, 49);
const QColor kHighlight(170, 100, 100);

QColor grey(int level)
{
    return QColor(level, level, level);
}

// A 1-pixel outline just inside `rect`.
void drawFrame(QPainter *painter, const QRect &rect, const QColor &color)
{
    painter->save();
    painter->setPen(color);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

bool hasFocus(const QStyleOption *option)
{
    return option->state & QStyle::State_HasFocus;
}

bool isEnabled(const QStyleOption *option)
{
    return option->state & QStyle::State_Enabled;
}

// An arrow in `color` centred in `rect`, through the one arrow helper.
void arrowIn(QStyle::PrimitiveElement element, QPainter *painter, const QStyleOption *option,
             const QRect &rect, const QColor &color, int size)
{
    QStyleOption arrow(*option);
    arrow.rect = rect;
    arrow.palette.setColor(QPalette::WindowText, color);
    RynStyle::drawArrow(element, painter, &arrow, size);
}

// An arrow that fits a button of `rect`: 7 where there is room.
int arrowSize(const QRect &rect)
{
    return qBound(3, qMin(rect.width(), rect.height()) - 4, 7);
}

// ---- Message-box icons: shapes, so they do not depend on the fonts at hand.

QPainterPath balloonPath()
{
    QPainterPath path;
    path.addEllipse(QRectF(1.5, 1.5, 26, 22));
    QPainterPath tail;
    tail.moveTo(7, 19);
    tail.lineTo(4, 28);
    tail.lineTo(14, 22);
    tail.closeSubpath();
    return path.united(tail).simplified();
}

QPainterPath warningPath()
{
    QPainterPath path;
    path.moveTo(14.5, 1.5);
    path.lineTo(28.5, 27.5);
    path.lineTo(0.5, 27.5);
    path.closeSubpath();
    return path;
}

QPainterPath criticalPath()
{
    QPainterPath path;
    path.addEllipse(QRectF(1.5, 1.5, 26, 26));
    return path;
}

QPixmap messageBoxIcon(QStyle::StandardPixmap which)
{
    QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QPainterPath shape = which == QStyle::SP_MessageBoxWarning    ? warningPath()
                               : which == QStyle::SP_MessageBoxCritical ? criticalPath()
                                                                        : balloonPath();
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x99, 0x99, 0x99));
    p.drawPath(shape.translated(3, 3));
    const QColor body = which == QStyle::SP_MessageBoxWarning    ? QColor(0xff, 0xff, 0x00)
                        : which == QStyle::SP_MessageBoxCritical ? QColor(0xff, 0x00, 0x00)
                                                                 : QColor(Qt::white);
    p.setPen(QPen(Qt::black, 1));
    p.setBrush(body);
    p.drawPath(shape);

    switch (which) {
    case QStyle::SP_MessageBoxInformation:
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x00, 0x00, 0xff));
        p.drawEllipse(QRectF(12.5, 4.5, 4, 4));
        p.drawRect(QRectF(12.5, 10, 4, 11));
        p.drawRect(QRectF(10.5, 19, 8, 2));
        break;
    case QStyle::SP_MessageBoxQuestion: {
        p.setPen(QPen(QColor(0x00, 0x00, 0xff), 3, Qt::SolidLine, Qt::FlatCap));
        p.setBrush(Qt::NoBrush);
        QPainterPath mark;
        mark.moveTo(10, 9);
        mark.arcTo(QRectF(10, 4.5, 9, 8), 180, -260);
        mark.lineTo(14.5, 14);
        mark.lineTo(14.5, 16);
        p.drawPath(mark);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x00, 0x00, 0xff));
        p.drawEllipse(QRectF(12.8, 17.5, 3.5, 3.5));
        break;
    }
    case QStyle::SP_MessageBoxWarning:
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::black);
        p.drawRect(QRectF(13, 9, 3, 10));
        p.drawEllipse(QRectF(12.8, 21, 3.5, 3.5));
        break;
    case QStyle::SP_MessageBoxCritical:
        p.setPen(QPen(Qt::white, 3.5, Qt::SolidLine, Qt::FlatCap));
        p.drawLine(QPointF(9, 9), QPointF(20, 20));
        p.drawLine(QPointF(20, 9), QPointF(9, 20));
        break;
    default:
        break;
    }
    p.end();
    return QPixmap::fromImage(image);
}

bool isMessageBoxIcon(QStyle::StandardPixmap which)
{
    return which == QStyle::SP_MessageBoxInformation || which == QStyle::SP_MessageBoxWarning
           || which == QStyle::SP_MessageBoxCritical || which == QStyle::SP_MessageBoxQuestion;
}

} // namespace

RynStyle::RynStyle()
{
    // Every role starts green, so that a role nobody set shows at once.
    for (int g = 0; g < QPalette::NColorGroups; ++g)
        for (int r = 0; r < QPalette::NColorRoles; ++r)
            _standard_palette.setColor(QPalette::ColorGroup(g), QPalette::ColorRole(r), kGreen);
    QPalette &s = _standard_palette;
    s.setColor(QPalette::Window, grey(210));
    s.setColor(QPalette::Button, grey(210));
    s.setColor(QPalette::Base, grey(240));
    s.setColor(QPalette::AlternateBase, grey(240));
    s.setColor(QPalette::WindowText, kTextColor);
    s.setColor(QPalette::Text, kTextColor);
    s.setColor(QPalette::ButtonText, kTextColor);
    s.setColor(QPalette::Highlight, kHighlight);
    s.setColor(QPalette::HighlightedText, grey(240));
    s.setColor(QPalette::BrightText, grey(240));
    s.setColor(QPalette::Link, focus_color);
    s.setColor(QPalette::LinkVisited, focus_color);
    s.setColor(QPalette::Light, grey(240));
    s.setColor(QPalette::Mid, grey(180));
    s.setColor(QPalette::Shadow, grey(150));
    s.setColor(QPalette::Dark, grey(112));
    // Tool tips take this palette and Qt 6 draws line-edit placeholders in
    // their own role: these must not show the green marker to the user.
    s.setColor(QPalette::ToolTipBase, grey(240));
    s.setColor(QPalette::ToolTipText, kTextColor);
    QColor placeholder = kTextColor;
    placeholder.setAlpha(128);
    s.setColor(QPalette::PlaceholderText, placeholder);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                     QPalette::HighlightedText})
        s.setColor(QPalette::Disabled, role, grey(150));

    _bar_palette = s;
    _bar_palette.setColor(QPalette::Button, grey(180));
    _bar_palette.setColor(QPalette::Window, grey(180));

    _view_palette = s;
    _view_palette.setColor(QPalette::Base, grey(210));

    const QColor window = grey(192);
    _alternative_palette = QPalette(Qt::black, window, Qt::white, window.darker(150), grey(190),
                                    Qt::black, Qt::white);
    _alternative_palette.setColor(QPalette::Highlight, kHighlight);
    _alternative_palette.setColor(QPalette::HighlightedText, grey(240));
    _alternative_palette.setColor(QPalette::Link, focus_color);
    _alternative_palette.setColor(QPalette::LinkVisited, focus_color);
}

RynStyle::~RynStyle() = default;

void RynStyle::polish(QApplication *application)
{
    QCommonStyle::polish(application);
    QApplication::setPalette(_standard_palette);
    QApplication::setPalette(_view_palette, "QAbstractItemView");
    // Qt 4's Q3ListView, which also took the view palette, has no Qt 6 counterpart.
    QApplication::setPalette(_bar_palette, "QMenuBar");
    QApplication::setPalette(_bar_palette, "QToolBar");
    QApplication::setPalette(_bar_palette, "QStatusBar");
    QToolTip::setPalette(_standard_palette);
}

void RynStyle::polish(QWidget *widget)
{
    QCommonStyle::polish(widget);
    if (qobject_cast<QStatusBar *>(widget) || qobject_cast<QMenuBar *>(widget))
        widget->setAutoFillBackground(true);
    QWidget *parent = widget->parentWidget();
    QWidget *grandParent = parent ? parent->parentWidget() : nullptr;
    if (!grandParent)
        return;
    // A combo box's popup list and the editors inside item views are not
    // views themselves: they keep the lighter standard colours.
    if (qobject_cast<QAbstractItemView *>(widget) && qobject_cast<QComboBox *>(grandParent))
        widget->setPalette(_standard_palette);
    else if (qobject_cast<QAbstractItemView *>(grandParent))
        widget->setPalette(_standard_palette);
}

QPalette RynStyle::standardPalette() const
{
    return _standard_palette;
}

int RynStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_ButtonDefaultIndicator:
        return 2;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_DockWidgetHandleExtent:
    case PM_DockWidgetFrameWidth:
    case PM_TabBarTabOverlap:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
    case PM_ToolBarFrameWidth:
    case PM_ToolBarItemSpacing:
        return 0;
    case PM_DefaultFrameWidth:
    case PM_SpinBoxFrameWidth:
    case PM_ProgressBarChunkWidth:
    case PM_ToolBarItemMargin:
        return 1;
    case PM_MaximumDragDistance:
        return -1;
    case PM_ScrollBarExtent:
    case PM_TabBarScrollButtonWidth:
    case PM_ToolBarIconSize:
    case PM_SmallIconSize:
    case PM_TabBarIconSize:
        return 16;
    case PM_ScrollBarSliderMin:
        return 22;
    case PM_SliderControlThickness:
    case PM_SliderLength:
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 13;
    case PM_SliderTickmarkOffset:
        if (const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option)) {
            const int extent = slider->orientation == Qt::Horizontal ? slider->rect.height()
                                                                     : slider->rect.width();
            const int space = extent - pixelMetric(PM_SliderControlThickness, option, widget);
            return slider->tickPosition == QSlider::TicksAbove ? space : space / 2;
        }
        break;
    case PM_SplitterWidth:
        return 3;
    // Qt 6 has no default margins and spacing of its own: the layout metrics
    // replace them. Windows keep a margin of 10, nested layouts none.
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin: {
        const bool window = option ? (option->state & State_Window) : (widget && widget->isWindow());
        return window ? 10 : 0;
    }
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 10;
    case PM_LargeIconSize:
    case PM_ButtonIconSize:
        return 24;
    default:
        break;
    }
    return QCommonStyle::pixelMetric(metric, option, widget);
}

int RynStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                        QStyleHintReturn *returnData) const
{
    switch (hint) {
    // Qt 6 dropped SH_ItemView_ChangeHighlightOnFocus, which was off here too.
    case SH_EtchDisabledText:
    case SH_Slider_SnapToValue:
    case SH_Menu_AllowActiveAndDisabled:
    case SH_MenuBar_AltKeyNavigation:
    case SH_ToolBox_SelectedPageTitleBold:
    case SH_UnderlineShortcut:
    case SH_ItemView_ShowDecorationSelected:
        return 0;
    case SH_PrintDialog_RightAlignButtons:
    case SH_MainWindow_SpaceBelowMenuBar:
    case SH_FontDialog_SelectAssociatedText:
    case SH_ComboBox_ListMouseTracking:
    case SH_Menu_MouseTracking:
    case SH_MenuBar_MouseTracking:
    case SH_Slider_StopMouseOverSlider:
    case SH_Button_FocusPolicy:
        return 1;
    case SH_Menu_SubMenuPopupDelay:
        return 30;
    default:
        break;
    }
    return QCommonStyle::styleHint(hint, option, widget, returnData);
}

QPixmap RynStyle::standardPixmap(StandardPixmap pixmap, const QStyleOption *option, const QWidget *widget) const
{
    if (isMessageBoxIcon(pixmap))
        return messageBoxIcon(pixmap);
    return QCommonStyle::standardPixmap(pixmap, option, widget);
}

QIcon RynStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    // QCommonStyle looks for the message-box icons in the desktop theme and
    // its own files first; the applications show their own.
    if (isMessageBoxIcon(icon))
        return QIcon(standardPixmap(icon, option, widget));
    // Every QToolBar asks for its extension icon when it is built, and
    // QCommonStyle decodes the icon files anew each time. Toolbars are rebuilt
    // on every main-menu switch, where that decoding was the largest single
    // cost; the icon only depends on the layout direction, so keep it.
    if (icon == SP_ToolBarHorizontalExtensionButton || icon == SP_ToolBarVerticalExtensionButton) {
        // The same direction rule as QCommonStyle's, so the cache never
        // answers differently from it.
        const bool rtl = option ? option->direction == Qt::RightToLeft
                                : QGuiApplication::layoutDirection() == Qt::RightToLeft;
        QIcon &cached = _extension_icons[icon == SP_ToolBarVerticalExtensionButton][rtl];
        if (cached.isNull())
            cached = QCommonStyle::standardIcon(icon, option, widget);
        return cached;
    }
    return QCommonStyle::standardIcon(icon, option, widget);
}

QPixmap RynStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap &pixmap, const QStyleOption *option) const
{
    if (mode == QIcon::Disabled)
        return QCommonStyle::generatedIconPixmap(mode, pixmap, option);
    return pixmap;
}

QRect RynStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl sub,
                               const QWidget *widget) const
{
    const QRect r = option->rect;
    const int x = r.x();
    const int y = r.y();
    const int w = r.width();
    const int h = r.height();
    QRect rect;
    switch (control) {
    case CC_SpinBox: {
        // Qt 6 has no global strut any more: 8 pixels are the only floor.
        const int b = qMax((h - 2) / 2, 8);
        switch (sub) {
        case SC_SpinBoxUp:
            rect = QRect(x + w - h, y + 1, h - 1, b);
            break;
        case SC_SpinBoxDown:
            rect = QRect(x + w - h, y + b + 1, h - 1, h - 2 - b);
            break;
        case SC_SpinBoxFrame:
            rect = r;
            break;
        case SC_SpinBoxEditField:
            rect = QRect(x + 1, y + 1, w - h - 1, h - 2);
            break;
        default:
            return QCommonStyle::subControlRect(control, option, sub, widget);
        }
        break;
    }
    case CC_ComboBox:
        switch (sub) {
        case SC_ComboBoxFrame:
        case SC_ComboBoxListBoxPopup:
            rect = r;
            break;
        case SC_ComboBoxEditField:
            rect = QRect(x + 1, y + 1, w - h - 1, h - 2);
            break;
        case SC_ComboBoxArrow:
            rect = QRect(x + w - h, y + 1, h - 1, h - 2);
            break;
        default:
            return QCommonStyle::subControlRect(control, option, sub, widget);
        }
        break;
    default:
        return QCommonStyle::subControlRect(control, option, sub, widget);
    }
    return visualRect(option->direction, r, rect);
}

QSize RynStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                 const QWidget *widget) const
{
    switch (type) {
    case CT_PushButton:
        if (const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option)) {
            QSize size = QCommonStyle::sizeFromContents(type, option, contents, widget);
            const int grow = button->features & QStyleOptionButton::AutoDefaultButton ? 2 : 0;
            size.setHeight(qMax(size.height(), 23 + grow));
            if (button->icon.isNull())
                size.setWidth(qMax(size.width(), 75 + grow));
            return size;
        }
        break;
    case CT_ToolButton:
        return contents + QSize(7, 6);
    case CT_ComboBox:
        if (const auto *combo = qstyleoption_cast<const QStyleOptionComboBox *>(option)) {
            const int leading = combo->fontMetrics.leading();
            const int extra = qMax(2 * qMax(leading, 1) - leading - 2, 0);
            const int frame = combo->frame ? 1 : 0;
            return QSize(contents.width() + contents.height() + 3 * frame,
                         qMax(20, contents.height() + extra + 2 * frame));
        }
        break;
    case CT_SpinBox: {
        QSize size = QCommonStyle::sizeFromContents(type, option, contents, widget);
        size.setHeight(qMax(size.height(), 20));
        return size;
    }
    case CT_MenuBarItem:
        if (contents.isEmpty())
            return contents;
        return contents + QSize(4 * PopupItemHMargin, 2 * PopupItemVMargin);
    case CT_MenuItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            if (item->menuItemType == QStyleOptionMenuItem::Separator)
                return QSize(10, PopupSepHeight);
            const int maxIcon = item->maxIconWidth;
            int h = contents.height();
            if (!item->icon.isNull())
                h = qMax(h, pixelMetric(PM_SmallIconSize, option, widget) + 2 * PopupItemFrame);
            if (!item->text.isEmpty())
                h = qMax(h, item->fontMetrics.height() + 2 * (PopupItemVMargin + PopupItemFrame));
            int w = contents.width() + 2 * (PopupItemFrame + PopupItemHMargin);
            if (item->text.contains(QLatin1Char('\t')))
                w += PopupTabSpacing;
            else if (item->menuItemType == QStyleOptionMenuItem::SubMenu)
                w += (h - 2 * PopupItemFrame) / 2 + PopupArrowHMargin;
            if (maxIcon < 0)
                w += PopupCheckMarkSpace;
            else if (maxIcon < PopupCheckMarkSpace)
                w += PopupCheckMarkSpace - maxIcon;
            w += qMax(PopupCheckMarkHMargin, maxIcon);
            return QSize(w, h);
        }
        break;
    default:
        break;
    }
    return QCommonStyle::sizeFromContents(type, option, contents, widget);
}

// ---- Helpers

void RynStyle::drawVerticalGradient(QPainter *painter, const QRect &rect, const QColor &top, const QColor &bottom)
{
    const int h = rect.height();
    if (h <= 0 || rect.width() <= 0)
        return;
    // 16.16 fixed point, so every row gets its own exact step without floats.
    const int stepR = (bottom.red() - top.red()) * 65536 / h;
    const int stepG = (bottom.green() - top.green()) * 65536 / h;
    const int stepB = (bottom.blue() - top.blue()) * 65536 / h;
    int r = 0, g = 0, b = 0;
    const QPen saved = painter->pen();
    for (int row = 0; row < h; ++row) {
        painter->setPen(QColor(top.red() + (r >> 16), top.green() + (g >> 16), top.blue() + (b >> 16), 255));
        painter->drawLine(rect.left(), rect.top() + row, rect.right(), rect.top() + row);
        r += stepR;
        g += stepG;
        b += stepB;
    }
    painter->setPen(saved);
}

void RynStyle::drawArrow(PrimitiveElement element, QPainter *painter, const QStyleOption *option, int size)
{
    const int across = size | 1;
    const int along = 10 * size / 11;
    if (along <= 0)
        return;
    const bool vertical = element == PE_IndicatorArrowUp || element == PE_IndicatorArrowDown;
    // Reversed arrows run from their tip back to the base.
    const bool reversed = element == PE_IndicatorArrowUp || element == PE_IndicatorArrowLeft;
    if (!vertical && element != PE_IndicatorArrowLeft && element != PE_IndicatorArrowRight)
        return;
    const QPoint c = option->rect.center();
    const int half = across / 2;
    const int base = (vertical ? c.y() : c.x()) - along / 2;
    const QColor color = option->palette.color(QPalette::WindowText);
    // One line of pixels per step from the base to the tip, symmetric about
    // the centre line: rasterised polygons lean by a pixel depending on
    // their direction, these do not.
    for (int i = 0; i < along; ++i) {
        const int h = along == 1 ? half : (half * (along - 1 - i) + (along - 1) / 2) / (along - 1);
        const int at = base + (reversed ? along - 1 - i : i);
        if (vertical)
            painter->fillRect(c.x() - h, at, 2 * h + 1, 1, color);
        else
            painter->fillRect(at, c.y() - h, 1, 2 * h + 1, color);
    }
}

void RynStyle::drawCircle(QPainter *painter, const QPoint &centre, const QColor &pen, const QColor &fill)
{
    static const int points[24][2] = {
        {-6, -2}, {-6, 2}, {-5, 3},  {-5, 4},  {-4, 5},  {-3, 5},  {-2, 6},   {2, 6},
        {3, 5},   {4, 5},  {5, 4},   {5, 3},   {6, 2},   {6, -2},  {5, -3},   {5, -4},
        {4, -5},  {3, -5}, {2, -6},  {-2, -6}, {-3, -5}, {-4, -5}, {-5, -4},  {-5, -3}};
    QPolygon circle(24);
    for (int i = 0; i < 24; ++i)
        circle.setPoint(i, centre.x() + points[i][0], centre.y() + points[i][1]);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(pen);
    painter->setBrush(fill);
    painter->drawPolygon(circle);
    painter->restore();
}

void RynStyle::drawBranch(const QStyleOption *option, QPainter *painter) const
{
    if (!(option->state & State_Children))
        return;
    const PrimitiveElement arrow = option->state & State_Open ? PE_IndicatorArrowDown
                                   : option->direction == Qt::RightToLeft ? PE_IndicatorArrowLeft
                                                                          : PE_IndicatorArrowRight;
    arrowIn(arrow, painter, option, option->rect, option->palette.color(QPalette::Dark), 7);
}

void RynStyle::drawExtendBox(const QStyleOptionComplex *option, QPainter *painter) const
{
    const QPalette &pal = option->palette;
    const QRect r = option->rect;
    drawFrame(painter, r, hasFocus(option) ? focus_color : pal.color(QPalette::Dark));
    const QRect inner = r.adjusted(1, 1, -1, -1);
    const int side = inner.height();
    if (side <= 0 || inner.width() <= side)
        return;
    const QRect button(inner.right() - side + 1, inner.top(), side, side);
    painter->save();
    painter->setPen(pal.color(QPalette::Dark));
    painter->drawLine(button.left() - 1, inner.top(), button.left() - 1, inner.bottom());
    painter->restore();
    drawVerticalGradient(painter, button, pal.color(QPalette::Mid), pal.color(QPalette::Dark));
    arrowIn(PE_IndicatorArrowRight, painter, option, button, pal.color(QPalette::Light), 2 * side / 3);
}

// ---- Complex controls

void RynStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                  const QWidget *widget) const
{
    switch (control) {
    case CC_SpinBox:
        drawSpinBox(option, painter, widget);
        return;
    case CC_ComboBox:
        drawComboBox(option, painter, widget);
        return;
    case CC_ScrollBar:
        drawScrollBar(option, painter, widget);
        return;
    case CC_Slider:
        drawSlider(option, painter, widget);
        return;
    case CC_ToolButton:
        drawToolButton(option, painter, widget);
        return;
    case CC_TitleBar:
        drawTitleBar(option, painter, widget);
        return;
    // Qt 4's CC_Q3ListView has no Qt 6 counterpart, and so no list view drawing here.
    default:
        break;
    }
    if (control == CC_ExtendBox) {
        drawExtendBox(option, painter);
        return;
    }
    QCommonStyle::drawComplexControl(control, option, painter, widget);
}

void RynStyle::drawSpinBox(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *spin = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
    if (!spin) {
        QCommonStyle::drawComplexControl(CC_SpinBox, option, painter, widget);
        return;
    }
    const QPalette &pal = spin->palette;
    if (spin->frame && (spin->subControls & SC_SpinBoxFrame)) {
        painter->fillRect(spin->rect, pal.brush(QPalette::Base));
        drawFrame(painter, spin->rect, hasFocus(spin) ? focus_color : pal.color(QPalette::Dark));
    }
    if (spin->buttonSymbols == QAbstractSpinBox::NoButtons)
        return;
    const struct {
        SubControl sub;
        QAbstractSpinBox::StepEnabledFlag step;
        PrimitiveElement arrow;
    } buttons[] = {{SC_SpinBoxUp, QAbstractSpinBox::StepUpEnabled, PE_IndicatorArrowUp},
                   {SC_SpinBoxDown, QAbstractSpinBox::StepDownEnabled, PE_IndicatorArrowDown}};
    for (const auto &b : buttons) {
        if (!(spin->subControls & b.sub))
            continue;
        const QRect r = subControlRect(CC_SpinBox, spin, b.sub, widget);
        const bool pressed = (spin->activeSubControls & b.sub) && (spin->state & State_Sunken);
        if (pressed)
            drawVerticalGradient(painter, r, pal.color(QPalette::Mid), pal.color(QPalette::Button));
        else
            drawVerticalGradient(painter, r, pal.color(QPalette::Light), pal.color(QPalette::Button));
        painter->save();
        painter->setPen(pal.color(QPalette::Dark));
        painter->drawLine(r.left() - 1, r.top(), r.left() - 1, r.bottom());
        if (b.sub == SC_SpinBoxDown)
            painter->drawLine(r.left(), r.top() - 1, r.right(), r.top() - 1);
        painter->restore();
        const bool enabled = isEnabled(spin) && (spin->stepEnabled & b.step);
        const QColor color = pal.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
        if (spin->buttonSymbols == QAbstractSpinBox::PlusMinus) {
            const QPoint c = r.center();
            const int arm = qMin(3, qMin(r.width(), r.height()) / 2 - 1);
            painter->fillRect(c.x() - arm, c.y(), 2 * arm + 1, 1, color);
            if (b.sub == SC_SpinBoxUp)
                painter->fillRect(c.x(), c.y() - arm, 1, 2 * arm + 1, color);
        } else {
            arrowIn(b.arrow, painter, spin, r, color, arrowSize(r));
        }
    }
}

void RynStyle::drawComboBox(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *combo = qstyleoption_cast<const QStyleOptionComboBox *>(option);
    if (!combo) {
        QCommonStyle::drawComplexControl(CC_ComboBox, option, painter, widget);
        return;
    }
    const QPalette &pal = combo->palette;
    const QRect r = combo->rect;
    if (combo->editable)
        painter->fillRect(r, pal.brush(QPalette::Base));
    else
        drawVerticalGradient(painter, r, pal.color(QPalette::Light), pal.color(QPalette::Button));
    if (combo->frame)
        drawFrame(painter, r, hasFocus(combo) ? focus_color : pal.color(QPalette::Dark));
    if (combo->subControls & SC_ComboBoxArrow) {
        const QRect arrow = subControlRect(CC_ComboBox, combo, SC_ComboBoxArrow, widget);
        const bool pressed = (combo->activeSubControls & SC_ComboBoxArrow) && (combo->state & State_Sunken);
        drawVerticalGradient(painter, arrow, pal.color(pressed ? QPalette::Mid : QPalette::Button),
                             pal.color(pressed ? QPalette::Button : QPalette::Mid));
        painter->save();
        painter->setPen(pal.color(QPalette::Dark));
        const int x = combo->direction == Qt::RightToLeft ? arrow.right() + 1 : arrow.left() - 1;
        painter->drawLine(x, arrow.top(), x, arrow.bottom());
        painter->restore();
        arrowIn(PE_IndicatorArrowDown, painter, combo, arrow, pal.color(QPalette::ButtonText), arrowSize(arrow));
    }
}

void RynStyle::drawScrollBar(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (!bar) {
        QCommonStyle::drawComplexControl(CC_ScrollBar, option, painter, widget);
        return;
    }
    const QPalette &pal = bar->palette;
    const bool horizontal = bar->orientation == Qt::Horizontal;
    const bool rtl = bar->direction == Qt::RightToLeft;
    const bool sunken = bar->state & State_Sunken;
    for (SubControl page : {SC_ScrollBarSubPage, SC_ScrollBarAddPage}) {
        if (!(bar->subControls & page))
            continue;
        const bool pressed = sunken && (bar->activeSubControls & page);
        painter->fillRect(subControlRect(CC_ScrollBar, bar, page, widget),
                          pal.color(pressed ? QPalette::Dark : QPalette::Mid));
    }
    const struct {
        SubControl sub;
        PrimitiveElement arrow;
    } lines[] = {
        {SC_ScrollBarSubLine, horizontal ? (rtl ? PE_IndicatorArrowRight : PE_IndicatorArrowLeft) : PE_IndicatorArrowUp},
        {SC_ScrollBarAddLine, horizontal ? (rtl ? PE_IndicatorArrowLeft : PE_IndicatorArrowRight) : PE_IndicatorArrowDown}};
    for (const auto &line : lines) {
        if (!(bar->subControls & line.sub))
            continue;
        const QRect r = subControlRect(CC_ScrollBar, bar, line.sub, widget);
        const bool pressed = sunken && (bar->activeSubControls & line.sub);
        painter->fillRect(r, pal.color(pressed ? QPalette::Mid : QPalette::Button));
        drawFrame(painter, r, pal.color(QPalette::Dark));
        arrowIn(line.arrow, painter, bar, r, pal.color(QPalette::ButtonText), arrowSize(r));
    }
    if ((bar->subControls & SC_ScrollBarSlider) && bar->maximum > bar->minimum) {
        const QRect r = subControlRect(CC_ScrollBar, bar, SC_ScrollBarSlider, widget);
        const bool pressed = sunken && (bar->activeSubControls & SC_ScrollBarSlider);
        painter->fillRect(r, pal.color(pressed ? QPalette::Light : QPalette::Button));
        drawFrame(painter, r, pal.color(QPalette::Dark));
    }
}

void RynStyle::drawSlider(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (!slider) {
        QCommonStyle::drawComplexControl(CC_Slider, option, painter, widget);
        return;
    }
    const QPalette &pal = slider->palette;
    const bool horizontal = slider->orientation == Qt::Horizontal;
    const QRect groove = subControlRect(CC_Slider, slider, SC_SliderGroove, widget);
    const QRect handle = subControlRect(CC_Slider, slider, SC_SliderHandle, widget);
    if (slider->subControls & SC_SliderGroove) {
        const QRect track = horizontal ? QRect(groove.left(), groove.center().y() - 1, groove.width(), 4)
                                       : QRect(groove.center().x() - 1, groove.top(), 4, groove.height());
        painter->fillRect(track, pal.color(QPalette::Mid));
        drawFrame(painter, track, pal.color(QPalette::Dark));
    }
    if ((slider->subControls & SC_SliderTickmarks) && slider->tickPosition != QSlider::NoTicks) {
        const int length = pixelMetric(PM_SliderLength, slider, widget);
        const int available = pixelMetric(PM_SliderSpaceAvailable, slider, widget);
        int interval = slider->tickInterval > 0 ? slider->tickInterval : slider->pageStep;
        interval = qMax(interval, 1);
        painter->save();
        painter->setPen(pal.color(QPalette::Dark));
        for (int v = slider->minimum; v <= slider->maximum; v += interval) {
            const int pos = sliderPositionFromValue(slider->minimum, slider->maximum, v, available,
                                                    slider->upsideDown) + length / 2;
            if (horizontal) {
                const int x = slider->rect.x() + pos;
                if (slider->tickPosition & QSlider::TicksAbove)
                    painter->drawLine(x, slider->rect.top(), x, handle.top() - 2);
                if (slider->tickPosition & QSlider::TicksBelow)
                    painter->drawLine(x, handle.bottom() + 2, x, slider->rect.bottom());
            } else {
                const int y = slider->rect.y() + pos;
                if (slider->tickPosition & QSlider::TicksLeft)
                    painter->drawLine(slider->rect.left(), y, handle.left() - 2, y);
                if (slider->tickPosition & QSlider::TicksRight)
                    painter->drawLine(handle.right() + 2, y, slider->rect.right(), y);
            }
            if (v > slider->maximum - interval)
                break; // no overflow past INT_MAX
        }
        painter->restore();
    }
    if (slider->subControls & SC_SliderHandle) {
        drawVerticalGradient(painter, handle, pal.color(QPalette::Light), pal.color(QPalette::Button));
        drawFrame(painter, handle, hasFocus(slider) ? focus_color : pal.color(QPalette::Dark));
    }
}

void RynStyle::drawToolButton(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *tool = qstyleoption_cast<const QStyleOptionToolButton *>(option);
    if (!tool) {
        QCommonStyle::drawComplexControl(CC_ToolButton, option, painter, widget);
        return;
    }
    const QRect button = subControlRect(CC_ToolButton, tool, SC_ToolButton, widget);
    const QRect menu = subControlRect(CC_ToolButton, tool, SC_ToolButtonMenu, widget);
    State buttonState = tool->state & ~State_Sunken;
    State menuState = buttonState;
    if (tool->state & State_Sunken) {
        if (tool->activeSubControls & SC_ToolButton)
            buttonState |= State_Sunken;
        else if (tool->activeSubControls & SC_ToolButtonMenu)
            menuState |= State_Sunken;
    }
    // An auto-raise button shows a panel only under the mouse, pressed or on.
    const bool autoRaise = tool->state & State_AutoRaise;
    const bool hovered = (tool->state & State_MouseOver) && isEnabled(tool);
    const bool panel = !autoRaise || hovered || (buttonState & (State_Sunken | State_On));
    if ((tool->subControls & SC_ToolButton) && panel) {
        QStyleOption o(*tool);
        o.rect = button;
        o.state = buttonState | State_Raised;
        drawPrimitive(PE_PanelButtonTool, &o, painter, widget);
    }
    if (tool->subControls & SC_ToolButtonMenu) {
        QStyleOption o(*tool);
        o.rect = menu;
        o.state = menuState;
        if (panel || (menuState & State_Sunken))
            drawPrimitive(PE_PanelButtonTool, &o, painter, widget);
        arrowIn(PE_IndicatorArrowDown, painter, tool, menu, tool->palette.color(QPalette::ButtonText),
                arrowSize(menu));
    }
    if (hasFocus(tool) && !autoRaise) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(*tool);
        focus.rect = button.adjusted(2, 2, -2, -2);
        drawPrimitive(PE_FrameFocusRect, &focus, painter, widget);
    }
    QStyleOptionToolButton label(*tool);
    label.rect = button;
    label.state = buttonState;
    drawControl(CE_ToolButtonLabel, &label, painter, widget);
    if ((tool->features & (QStyleOptionToolButton::MenuButtonPopup | QStyleOptionToolButton::HasMenu))
        == QStyleOptionToolButton::HasMenu) {
        // A delayed menu: a small arrow in the corner tells it is there.
        const QRect corner(button.right() - 6, button.bottom() - 5, 6, 5);
        arrowIn(PE_IndicatorArrowDown, painter, tool, corner, tool->palette.color(QPalette::ButtonText), 5);
    }
}

void RynStyle::drawTitleBar(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *title = qstyleoption_cast<const QStyleOptionTitleBar *>(option);
    if (!title) {
        QCommonStyle::drawComplexControl(CC_TitleBar, option, painter, widget);
        return;
    }
    const QPalette &pal = title->palette;
    const bool active = title->titleBarState & State_Active;
    if (active)
        drawVerticalGradient(painter, title->rect, pal.color(QPalette::Mid), pal.color(QPalette::Dark));
    else
        painter->fillRect(title->rect, pal.color(QPalette::Button));
    if (title->subControls & SC_TitleBarLabel) {
        const QRect label = subControlRect(CC_TitleBar, title, SC_TitleBarLabel, widget);
        painter->save();
        painter->setPen(pal.color(active ? QPalette::Light : QPalette::WindowText));
        painter->drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          painter->fontMetrics().elidedText(title->text, Qt::ElideRight, label.width()));
        painter->restore();
    }
    const struct {
        SubControl sub;
        StandardPixmap icon;
    } buttons[] = {{SC_TitleBarCloseButton, SP_TitleBarCloseButton},
                   {SC_TitleBarMaxButton, SP_TitleBarMaxButton},
                   {SC_TitleBarMinButton, SP_TitleBarMinButton},
                   {SC_TitleBarNormalButton, SP_TitleBarNormalButton},
                   {SC_TitleBarShadeButton, SP_TitleBarShadeButton},
                   {SC_TitleBarUnshadeButton, SP_TitleBarUnshadeButton},
                   {SC_TitleBarContextHelpButton, SP_TitleBarContextHelpButton}};
    for (const auto &b : buttons) {
        if (!(title->subControls & b.sub))
            continue;
        const QRect r = subControlRect(CC_TitleBar, title, b.sub, widget);
        if (!r.isValid())
            continue;
        const bool pressed = (title->activeSubControls & b.sub) && (title->state & State_Sunken);
        painter->fillRect(r, pal.color(pressed ? QPalette::Mid : QPalette::Button));
        drawFrame(painter, r, pal.color(QPalette::Dark));
        const QPixmap pm = standardIcon(b.icon, title, widget).pixmap(r.size() - QSize(4, 4));
        drawItemPixmap(painter, r, Qt::AlignCenter, pm);
    }
    if ((title->subControls & SC_TitleBarSysMenu) && !title->icon.isNull()) {
        const QRect r = subControlRect(CC_TitleBar, title, SC_TitleBarSysMenu, widget);
        if (r.isValid())
            drawItemPixmap(painter, r, Qt::AlignCenter, title->icon.pixmap(r.size()));
    }
}

// ---- Controls

void RynStyle::drawMenuItem(const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (!item) {
        QCommonStyle::drawControl(CE_MenuItem, option, painter, widget);
        return;
    }
    const QPalette &pal = item->palette;
    const QRect r = item->rect;
    painter->fillRect(r, pal.brush(QPalette::Window));
    switch (item->menuItemType) {
    case QStyleOptionMenuItem::Separator: {
        const int y = r.center().y();
        painter->save();
        painter->setPen(pal.color(QPalette::Dark));
        painter->drawLine(r.left() + PopupItemFrame, y - 1 + r.height() % 2, r.right() - PopupItemFrame,
                          y - 1 + r.height() % 2);
        painter->setPen(pal.color(QPalette::Light));
        painter->drawLine(r.left() + PopupItemFrame, y + r.height() % 2, r.right() - PopupItemFrame,
                          y + r.height() % 2);
        painter->restore();
        return;
    }
    case QStyleOptionMenuItem::EmptyArea:
    case QStyleOptionMenuItem::Margin:
        return;
    case QStyleOptionMenuItem::Scroller:
        arrowIn(item->state & State_DownArrow ? PE_IndicatorArrowDown : PE_IndicatorArrowUp, painter, item, r,
                pal.color(QPalette::WindowText), arrowSize(r));
        return;
    default:
        break;
    }
    const bool enabled = isEnabled(item);
    const bool selected = (item->state & State_Selected) && enabled;
    if (selected)
        painter->fillRect(r, pal.brush(QPalette::Highlight));
    const QPalette::ColorRole textRole = selected ? QPalette::HighlightedText : QPalette::Text;
    const QColor textColor = pal.color(enabled ? QPalette::Active : QPalette::Disabled, textRole);

    // The check column, as wide as the widest icon and at least the check space.
    const int checkWidth = qMax(item->maxIconWidth, PopupCheckMarkSpace);
    const QRect check(r.left() + PopupItemFrame, r.top() + PopupItemFrame, checkWidth,
                      r.height() - 2 * PopupItemFrame);
    const QRect checkRect = visualRect(item->direction, r, check);
    if (!item->icon.isNull()) {
        const int extent = pixelMetric(PM_SmallIconSize, item, widget);
        const QIcon::Mode mode = !enabled ? QIcon::Disabled : selected ? QIcon::Active : QIcon::Normal;
        const QPixmap pm = item->icon.pixmap(QSize(extent, extent), painter->device()->devicePixelRatio(), mode,
                                             item->checked ? QIcon::On : QIcon::Off);
        if (item->checked && item->checkType != QStyleOptionMenuItem::NotCheckable)
            drawFrame(painter, checkRect, pal.color(QPalette::Dark));
        drawItemPixmap(painter, checkRect, Qt::AlignCenter, pm);
    } else if (item->checked && item->checkType != QStyleOptionMenuItem::NotCheckable) {
        QStyleOptionMenuItem mark(*item);
        mark.rect = QRect(0, 0, 13, 13);
        mark.rect.moveCenter(checkRect.center());
        mark.palette.setColor(QPalette::Text, textColor);
        if (item->checkType == QStyleOptionMenuItem::Exclusive)
            drawCircle(painter, mark.rect.center(), textColor, selected ? pal.color(QPalette::Highlight) : textColor);
        else
            drawPrimitive(PE_IndicatorMenuCheckMark, &mark, painter, widget);
    }

    const int arrowWidth = item->menuItemType == QStyleOptionMenuItem::SubMenu
                               ? (r.height() - 2 * PopupItemFrame) / 2 + PopupArrowHMargin
                               : 0;
    const QRect text(check.right() + 1 + PopupCheckMarkHMargin + PopupItemHMargin, r.top(),
                     r.right() - PopupItemFrame - PopupItemHMargin - arrowWidth
                         - (check.right() + PopupCheckMarkHMargin + PopupItemHMargin),
                     r.height());
    const int mnemonic = styleHint(SH_UnderlineShortcut, item, widget) ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
    const int flags = Qt::AlignVCenter | Qt::TextSingleLine | mnemonic;
    QString label = item->text;
    const int tab = label.indexOf(QLatin1Char('\t'));
    painter->save();
    painter->setPen(textColor);
    if (item->menuItemType == QStyleOptionMenuItem::DefaultItem) {
        QFont bold = item->font;
        bold.setBold(true);
        painter->setFont(bold);
    }
    if (tab >= 0) {
        const QRect shortcut = visualRect(item->direction, r, text);
        painter->drawText(shortcut, flags | (item->direction == Qt::RightToLeft ? Qt::AlignLeft : Qt::AlignRight),
                          label.mid(tab + 1));
        label.truncate(tab);
    }
    painter->drawText(visualRect(item->direction, r, text),
                      flags | (item->direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft), label);
    painter->restore();
    if (arrowWidth > 0) {
        const QRect arrow(r.right() - PopupItemFrame - arrowWidth + 1, r.top(), arrowWidth, r.height());
        const PrimitiveElement direction = item->direction == Qt::RightToLeft ? PE_IndicatorArrowLeft
                                                                               : PE_IndicatorArrowRight;
        arrowIn(direction, painter, item, visualRect(item->direction, r, arrow), textColor, 7);
    }
}

void RynStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const
{
    const QPalette &pal = option->palette;
    const QRect r = option->rect;
    switch (element) {
    case CE_PushButton:
        if (const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option)) {
            drawControl(CE_PushButtonBevel, button, painter, widget);
            QStyleOptionButton label(*button);
            label.rect = subElementRect(SE_PushButtonContents, button, widget);
            drawControl(CE_PushButtonLabel, &label, painter, widget);
            if (hasFocus(button)) {
                QStyleOptionFocusRect focus;
                focus.QStyleOption::operator=(*button);
                focus.rect = subElementRect(SE_PushButtonFocusRect, button, widget);
                drawPrimitive(PE_FrameFocusRect, &focus, painter, widget);
            }
            return;
        }
        break;
    case CE_PushButtonBevel:
        if (const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option)) {
            QRect panel = r;
            const int indicator = pixelMetric(PM_ButtonDefaultIndicator, button, widget);
            if (button->features & QStyleOptionButton::DefaultButton)
                drawPrimitive(PE_FrameDefaultButton, button, painter, widget);
            if (button->features & (QStyleOptionButton::DefaultButton | QStyleOptionButton::AutoDefaultButton))
                panel.adjust(indicator, indicator, -indicator, -indicator);
            if (!(button->features & QStyleOptionButton::Flat) || (button->state & (State_Sunken | State_On))) {
                QStyleOptionButton o(*button);
                o.rect = panel;
                drawPrimitive(PE_PanelButtonCommand, &o, painter, widget);
            }
            if (button->features & QStyleOptionButton::HasMenu) {
                const int w = pixelMetric(PM_MenuButtonIndicator, button, widget);
                const QRect arrow = visualRect(button->direction, panel,
                                               QRect(panel.right() - w, panel.top(), w, panel.height()));
                arrowIn(PE_IndicatorArrowDown, painter, button, arrow, pal.color(QPalette::ButtonText), 7);
            }
            return;
        }
        break;
    case CE_PushButtonLabel:
        if (const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option)) {
            // The focused button names itself in the focus colour.
            QStyleOptionButton label(*button);
            if (hasFocus(button) && isEnabled(button))
                label.palette.setColor(QPalette::ButtonText, focus_color);
            QCommonStyle::drawControl(element, &label, painter, widget);
            return;
        }
        break;
    case CE_TabBarTabShape:
        if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option)) {
            const bool selected = tab->state & State_Selected;
            QRect shape = r;
            // The outline leaves out the edge toward the page.
            QPoint outline[4];
            switch (tab->shape) {
            case QTabBar::RoundedSouth:
            case QTabBar::TriangularSouth:
                if (!selected)
                    shape.adjust(0, 0, 0, -2);
                outline[0] = shape.topLeft();
                outline[1] = shape.bottomLeft();
                outline[2] = shape.bottomRight();
                outline[3] = shape.topRight();
                break;
            case QTabBar::RoundedWest:
            case QTabBar::TriangularWest:
                if (!selected)
                    shape.adjust(2, 0, 0, 0);
                outline[0] = shape.topRight();
                outline[1] = shape.topLeft();
                outline[2] = shape.bottomLeft();
                outline[3] = shape.bottomRight();
                break;
            case QTabBar::RoundedEast:
            case QTabBar::TriangularEast:
                if (!selected)
                    shape.adjust(0, 0, -2, 0);
                outline[0] = shape.topLeft();
                outline[1] = shape.topRight();
                outline[2] = shape.bottomRight();
                outline[3] = shape.bottomLeft();
                break;
            default:
                if (!selected)
                    shape.adjust(0, 2, 0, 0);
                outline[0] = shape.bottomLeft();
                outline[1] = shape.topLeft();
                outline[2] = shape.topRight();
                outline[3] = shape.bottomRight();
                break;
            }
            painter->fillRect(shape, pal.color(selected ? QPalette::Window : QPalette::Mid));
            painter->save();
            painter->setPen(pal.color(QPalette::Dark));
            painter->drawPolyline(outline, 4);
            painter->restore();
            return;
        }
        break;
    case CE_ProgressBarGroove:
        painter->fillRect(r, pal.brush(QPalette::Base));
        drawFrame(painter, r, pal.color(QPalette::Dark));
        return;
    case CE_ProgressBarContents:
        if (const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option)) {
            const QRect inner = r.adjusted(1, 1, -1, -1);
            const bool vertical = !(bar->state & State_Horizontal);
            QStyleOption chunk(*bar);
            if (bar->minimum == 0 && bar->maximum == 0) {
                // Busy without a known end: a hatched bar instead of a fraction.
                painter->fillRect(inner, QBrush(pal.color(QPalette::Highlight), Qt::Dense4Pattern));
                return;
            }
            const qint64 range = qint64(bar->maximum) - bar->minimum;
            const qint64 done = qBound<qint64>(0, qint64(bar->progress) - bar->minimum, range);
            const int extent = vertical ? inner.height() : inner.width();
            const int filled = range > 0 ? int(extent * done / range) : 0;
            if (filled <= 0)
                return;
            bool reverse = bar->invertedAppearance;
            if (!vertical && bar->direction == Qt::RightToLeft)
                reverse = !reverse;
            if (vertical)
                chunk.rect = reverse ? QRect(inner.left(), inner.top(), inner.width(), filled)
                                     : QRect(inner.left(), inner.bottom() - filled + 1, inner.width(), filled);
            else
                chunk.rect = reverse ? QRect(inner.right() - filled + 1, inner.top(), filled, inner.height())
                                     : QRect(inner.left(), inner.top(), filled, inner.height());
            drawPrimitive(PE_IndicatorProgressChunk, &chunk, painter, widget);
            return;
        }
        break;
    case CE_MenuItem:
        drawMenuItem(option, painter, widget);
        return;
    case CE_MenuTearoff: {
        painter->fillRect(r, pal.brush((option->state & State_Selected) ? QPalette::Highlight : QPalette::Window));
        painter->save();
        painter->setPen(QPen(pal.color(QPalette::Dark), 1, Qt::DashLine));
        const int y = r.center().y();
        painter->drawLine(r.left() + PopupItemFrame, y, r.right() - PopupItemFrame, y);
        painter->restore();
        return;
    }
    case CE_MenuBarItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            const bool enabled = isEnabled(item);
            const bool active = enabled && (item->state & State_Selected);
            const bool down = active && (item->state & State_Sunken);
            painter->fillRect(r, pal.brush(QPalette::Window));
            if (active) {
                painter->fillRect(r, pal.color(down ? QPalette::Highlight : QPalette::Mid));
                drawFrame(painter, r, pal.color(QPalette::Dark));
            }
            const int mnemonic = styleHint(SH_UnderlineShortcut, item, widget) ? Qt::TextShowMnemonic
                                                                               : Qt::TextHideMnemonic;
            drawItemText(painter, r, Qt::AlignCenter | Qt::TextSingleLine | mnemonic, pal, enabled, item->text,
                         down ? QPalette::HighlightedText : QPalette::ButtonText);
            return;
        }
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(r, pal.brush(QPalette::Window));
        return;
    case CE_HeaderSection: {
        const bool down = option->state & (State_Sunken | State_On);
        painter->fillRect(r, pal.color(down ? QPalette::Mid : QPalette::Button));
        painter->save();
        painter->setPen(pal.color(QPalette::Dark));
        painter->drawLine(r.right(), r.top(), r.right(), r.bottom());
        painter->drawLine(r.left(), r.bottom(), r.right(), r.bottom());
        painter->restore();
        return;
    }
    case CE_HeaderLabel:
        if (const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option)) {
            QRect text = r;
            if (!header->icon.isNull()) {
                const int extent = pixelMetric(PM_SmallIconSize, header, widget);
                const QPixmap pm = header->icon.pixmap(QSize(extent, extent), painter->device()->devicePixelRatio(),
                                                       isEnabled(header) ? QIcon::Normal : QIcon::Disabled);
                const QRect icon = visualRect(header->direction, r,
                                              QRect(r.left(), r.top(), extent + 2, r.height()));
                drawItemPixmap(painter, icon, Qt::AlignCenter, pm);
                text = visualRect(header->direction, r, r.adjusted(extent + 4, 0, 0, 0));
            }
            drawItemText(painter, text, int(header->textAlignment) | Qt::TextSingleLine, pal,
                         isEnabled(header), header->text, QPalette::ButtonText);
            return;
        }
        break;
    case CE_SizeGrip: {
        Qt::Corner corner = Qt::BottomRightCorner;
        if (const auto *grip = qstyleoption_cast<const QStyleOptionSizeGrip *>(option))
            corner = grip->corner;
        painter->save();
        // Drawn for the bottom-right corner and mirrored into the others.
        painter->translate(r.topLeft());
        const bool left = corner == Qt::BottomLeftCorner || corner == Qt::TopLeftCorner;
        const bool top = corner == Qt::TopLeftCorner || corner == Qt::TopRightCorner;
        painter->translate(left ? r.width() - 1 : 0, top ? r.height() - 1 : 0);
        painter->scale(left ? -1 : 1, top ? -1 : 1);
        const int right = r.width() - 1;
        const int bottom = r.height() - 1;
        for (int k = 3; k < qMin(r.width(), r.height()); k += 4) {
            painter->setPen(pal.color(QPalette::Dark));
            painter->drawLine(right - k, bottom, right, bottom - k);
            painter->setPen(pal.color(QPalette::Light));
            painter->drawLine(right - k + 1, bottom, right, bottom - k + 1);
        }
        painter->restore();
        return;
    }
    case CE_Splitter: {
        painter->fillRect(r, pal.brush(QPalette::Window));
        // Five dots in the middle of the handle show where to grab it.
        const bool horizontal = option->state & State_Horizontal;
        const QPoint c = r.center();
        for (int i = -2; i <= 2; ++i)
            painter->fillRect(horizontal ? QRect(c.x(), c.y() + 3 * i, 1, 1) : QRect(c.x() + 3 * i, c.y(), 1, 1),
                              pal.color(QPalette::Dark));
        return;
    }
    case CE_ComboBoxLabel:
        if (const auto *combo = qstyleoption_cast<const QStyleOptionComboBox *>(option)) {
            QRect edit = subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
            // The combo box's size hint leaves exactly the widest text and
            // icon (plus 4) in the edit field: no padding beyond that.
            if (!combo->currentIcon.isNull()) {
                const QIcon::Mode mode = isEnabled(combo) ? QIcon::Normal : QIcon::Disabled;
                const QPixmap pm = combo->currentIcon.pixmap(combo->iconSize, painter->device()->devicePixelRatio(),
                                                             mode);
                const int iconWidth = combo->iconSize.width();
                drawItemPixmap(painter, visualRect(combo->direction, edit,
                                                   QRect(edit.left() + 1, edit.top(), iconWidth, edit.height())),
                               Qt::AlignCenter, pm);
                edit = visualRect(combo->direction, edit,
                                  QRect(edit.left() + iconWidth + 4, edit.top(), edit.width() - iconWidth - 4,
                                        edit.height()));
            }
            if (!combo->currentText.isEmpty() && !combo->editable) {
                const QRect text = edit.adjusted(1, 0, 0, 0);
                QString shown = combo->currentText;
                // Bounding box and advance differ by a pixel or two: only a
                // really narrower box elides.
                if (combo->fontMetrics.horizontalAdvance(shown) > text.width() + 2)
                    shown = combo->fontMetrics.elidedText(shown, Qt::ElideRight, text.width());
                painter->save();
                painter->setClipRect(edit, Qt::IntersectClip);
                drawItemText(painter, text, visualAlignment(combo->direction, Qt::AlignLeft | Qt::AlignVCenter), pal,
                             isEnabled(combo), shown, QPalette::ButtonText);
                painter->restore();
            }
            return;
        }
        break;
    default:
        break;
    }
    QCommonStyle::drawControl(element, option, painter, widget);
}

// ---- Primitives

void RynStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    const QPalette &pal = option->palette;
    const QRect r = option->rect;
    const QColor dark = pal.color(QPalette::Dark);
    switch (element) {
    case PE_Frame:
    case PE_FrameMenu:
    case PE_FrameTabWidget:
    case PE_FrameWindow:
    case PE_PanelToolBar:
    case PE_FrameDockWidget:
        drawFrame(painter, r, dark);
        return;
    // Qt 4's PE_FrameStatusBar is PE_FrameStatusBarItem in Qt 6.
    case PE_FrameStatusBarItem:
        return;
    case PE_FrameDefaultButton:
        drawFrame(painter, r, focus_color);
        return;
    case PE_FrameFocusRect:
        drawFrame(painter, r, focus_color);
        return;
    case PE_FrameLineEdit:
        drawFrame(painter, r, hasFocus(option) ? focus_color : dark);
        return;
    case PE_PanelButtonCommand: {
        const bool down = option->state & (State_Sunken | State_On);
        if (!isEnabled(option))
            painter->fillRect(r, pal.color(QPalette::Button));
        else if (down)
            drawVerticalGradient(painter, r, pal.color(QPalette::Mid), pal.color(QPalette::Light));
        else
            drawVerticalGradient(painter, r, pal.color(QPalette::Light), pal.color(QPalette::Mid));
        drawFrame(painter, r, hasFocus(option) && isEnabled(option) ? focus_color : dark);
        return;
    }
    case PE_PanelButtonTool: {
        const bool down = option->state & (State_Sunken | State_On);
        if (down)
            painter->fillRect(r, pal.color(QPalette::Mid));
        else
            drawVerticalGradient(painter, r, pal.color(QPalette::Light), pal.color(QPalette::Button));
        drawFrame(painter, r, dark);
        return;
    }
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowLeft:
    case PE_IndicatorArrowRight:
    case PE_IndicatorArrowUp:
        drawArrow(element, painter, option, 7);
        return;
    case PE_IndicatorBranch:
        drawBranch(option, painter);
        return;
    // Qt 4's PE_IndicatorViewItemCheck is PE_IndicatorItemViewItemCheck in Qt 6.
    case PE_IndicatorItemViewItemCheck:
    case PE_IndicatorCheckBox: {
        QRect box(0, 0, 13, 13);
        box.moveCenter(r.center());
        const bool enabled = isEnabled(option);
        painter->fillRect(box, pal.color(enabled ? QPalette::Base : QPalette::Button));
        drawFrame(painter, box, hasFocus(option) && enabled ? focus_color : dark);
        const QColor mark = enabled ? focus_color : dark;
        if (option->state & State_NoChange) {
            painter->fillRect(box.adjusted(3, 3, -3, -3), pal.color(QPalette::Mid));
        } else if (option->state & State_On) {
            // A check mark of three 2-pixel strokes.
            const int x = box.left() + 3;
            const int y = box.top() + 6;
            painter->save();
            painter->setPen(mark);
            for (int i = 0; i < 2; ++i) {
                painter->drawLine(x, y + i, x + 2, y + 2 + i);
                painter->drawLine(x + 2, y + 2 + i, x + 6, y - 2 + i);
            }
            painter->restore();
        }
        return;
    }
    case PE_IndicatorRadioButton: {
        const bool enabled = isEnabled(option);
        const QPoint c = r.center();
        drawCircle(painter, c, hasFocus(option) && enabled ? focus_color : dark,
                   pal.color(enabled ? QPalette::Base : QPalette::Button));
        if (option->state & State_On) {
            const QColor dot = enabled ? focus_color : dark;
            painter->fillRect(c.x() - 1, c.y() - 2, 3, 5, dot);
            painter->fillRect(c.x() - 2, c.y() - 1, 5, 3, dot);
        }
        return;
    }
    case PE_IndicatorHeaderArrow:
        if (const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option)) {
            if (header->sortIndicator != QStyleOptionHeader::None)
                drawArrow(header->sortIndicator == QStyleOptionHeader::SortUp ? PE_IndicatorArrowUp
                                                                             : PE_IndicatorArrowDown,
                          painter, option, 7);
        }
        return;
    case PE_IndicatorProgressChunk:
        painter->fillRect(r, pal.brush(QPalette::Highlight));
        return;
    case PE_IndicatorToolBarHandle: {
        // Two grooves along the handle.
        painter->save();
        painter->setPen(dark);
        const QPoint c = r.center();
        if (option->state & State_Horizontal) {
            painter->drawLine(c.x() - 1, r.top() + 2, c.x() - 1, r.bottom() - 2);
            painter->drawLine(c.x() + 1, r.top() + 2, c.x() + 1, r.bottom() - 2);
        } else {
            painter->drawLine(r.left() + 2, c.y() - 1, r.right() - 2, c.y() - 1);
            painter->drawLine(r.left() + 2, c.y() + 1, r.right() - 2, c.y() + 1);
        }
        painter->restore();
        return;
    }
    case PE_IndicatorToolBarSeparator: {
        painter->save();
        painter->setPen(dark);
        const QPoint c = r.center();
        if (option->state & State_Horizontal)
            painter->drawLine(c.x(), r.top() + 2, c.x(), r.bottom() - 2);
        else
            painter->drawLine(r.left() + 2, c.y(), r.right() - 2, c.y());
        painter->restore();
        return;
    }
    case PE_IndicatorTabTear: {
        // A zigzag at the edge where tabs are cut off.
        painter->save();
        painter->setPen(dark);
        QPolygon zigzag;
        for (int y = r.top(), i = 0; y <= r.bottom(); y += 3, ++i)
            zigzag << QPoint(r.left() + (i % 2 ? 2 : 0), y);
        painter->drawPolyline(zigzag);
        painter->restore();
        return;
    }
    case PE_PanelScrollAreaCorner:
        painter->fillRect(r, pal.brush(QPalette::Window));
        return;
    default:
        break;
    }
    QCommonStyle::drawPrimitive(element, option, painter, widget);
}

} // namespace GApp
} // namespace Zal
