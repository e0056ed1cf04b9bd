#pragma once
#include "gapp_export.h"
#include <QColor>
#include <QCommonStyle>
#include <QIcon>
#include <QPalette>

class QPainter;

namespace Zal {
namespace GApp {

// The applications' flat grey widget style with a dark red focus colour. The
// Application object installs one for the whole process; QApplication owns it
// from then on. It sets the application palettes, its own metrics, hints,
// message-box icons and sizes, and draws a set of controls and primitives;
// everything else comes from QCommonStyle. GUI thread only.
class GAPP_EXPORT RynStyle : public QCommonStyle
{
    Q_OBJECT

public:
    static const QColor focus_color;
    static constexpr int PopupItemFrame = 2;
    static constexpr int PopupItemHMargin = 3;
    static constexpr int PopupItemVMargin = 2;
    static constexpr int PopupArrowHMargin = 6;
    static constexpr int PopupTabSpacing = 20;
    static constexpr int PopupCheckMarkSpace = 20;
    static constexpr int PopupSepHeight = 2;
    static constexpr int PopupCheckMarkHMargin = 2;
    // A framed field with an arrow button at its right end.
    static constexpr QStyle::ComplexControl CC_ExtendBox = QStyle::CC_CustomBase;

    RynStyle();
    ~RynStyle() override;

    using QCommonStyle::polish;
    void polish(QApplication *application) override;
    void polish(QWidget *widget) override;
    QPalette standardPalette() const override;

    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    QPixmap standardPixmap(StandardPixmap pixmap, const QStyleOption *option = nullptr,
                           const QWidget *widget = nullptr) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap &pixmap,
                                const QStyleOption *option) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl sub,
                         const QWidget *widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;

    QPalette alternativePalette() const { return _alternative_palette; }

    // Drawing helpers, also for the hosts' own widgets.
    static void drawVerticalGradient(QPainter *painter, const QRect &rect, const QColor &top,
                                     const QColor &bottom);
    // `element` is one of the PE_IndicatorArrow* primitives.
    static void drawArrow(PrimitiveElement element, QPainter *painter, const QStyleOption *option, int size);
    static void drawCircle(QPainter *painter, const QPoint &centre, const QColor &pen, const QColor &fill);

private:
    void drawSpinBox(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawComboBox(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawScrollBar(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawSlider(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawToolButton(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawTitleBar(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawExtendBox(const QStyleOptionComplex *option, QPainter *painter) const;
    void drawBranch(const QStyleOption *option, QPainter *painter) const;
    void drawMenuItem(const QStyleOption *option, QPainter *painter, const QWidget *widget) const;

    QPalette _standard_palette;
    QPalette _bar_palette;
    QPalette _view_palette;
    QPalette _alternative_palette;
    // Toolbar extension icons, [vertical][right-to-left].
    mutable QIcon _extension_icons[2][2];
};

} // namespace GApp
} // namespace Zal
