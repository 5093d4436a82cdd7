#pragma once

#include <QProxyStyle>

/// The desktop's style, in which every control has an outline that can be seen on a light window and on a
/// dark one. Main thread.
class ControlStyle : public QProxyStyle {
    Q_OBJECT

public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
};
