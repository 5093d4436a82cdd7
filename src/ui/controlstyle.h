#pragma once

#include <QProxyStyle>

class QStyleOptionComboBox;
class QStyleOptionGroupBox;
class QStyleOptionHeader;
class QStyleOptionToolButton;

namespace sealwright {

/// A bar of tabs that has this property has its tabs at its end.
inline constexpr auto tabsAtTheEnd = "tabsAtTheEnd";
/// A button that has this property is a small round sign.
inline constexpr auto roundSign = "roundSign";

/// The desktop's style, in which every control has an outline that can be seen on a light window and on a
/// dark one. Where the desktop has none of its own and the plain one of Qt stands in, the controls are drawn
/// flat, with round corners, and grow with the font. Main thread.
class ControlStyle : public QProxyStyle {
    Q_OBJECT

public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;

private:
    bool isPlain() const;
    void drawMenuButton(const QStyleOptionToolButton &button, QPainter &painter, const QWidget *widget) const;
    void drawTitle(const QStyleOptionComboBox &popup, QPainter &painter, const QWidget *widget) const;
    void drawHeader(const QStyleOptionHeader &header, QPainter &painter, const QWidget *widget) const;
    void drawGroup(const QStyleOptionGroupBox &group, QPainter &painter) const;
    bool drawPlain(PrimitiveElement element, const QStyleOption &option, QPainter &painter,
                   const QWidget *widget) const;
    bool drawPlain(ControlElement element, const QStyleOption &option, QPainter &painter,
                   const QWidget *widget) const;
    bool drawPlain(ComplexControl control, const QStyleOptionComplex &option, QPainter &painter,
                   const QWidget *widget) const;
};

} // namespace sealwright
