// Palettes over the toolkit's own style.

#include "widgets/theme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace {

QPalette paletteOf(bool dark)
{
    const auto color = [dark](QRgb light, QRgb night) { return QColor(dark ? night : light); };
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, QRgb light, QRgb night) {
        palette.setColor(role, color(light, night));
    };
    set(QPalette::Window, 0xfff2f2f0, 0xff2b2d2f);
    set(QPalette::WindowText, 0xff202020, 0xffe4e4e2);
    set(QPalette::Base, 0xffffffff, 0xff1e2022);
    set(QPalette::AlternateBase, 0xfff4f6f3, 0xff26292b);
    set(QPalette::Text, 0xff202020, 0xffe4e4e2);
    set(QPalette::PlaceholderText, 0xff808080, 0xff8c8f92);
    set(QPalette::Button, 0xffeaeae8, 0xff3a3d40);
    set(QPalette::ButtonText, 0xff202020, 0xffe4e4e2);
    set(QPalette::BrightText, 0xffc02020, 0xffff7070);
    set(QPalette::ToolTipBase, 0xffffffe8, 0xff3a3d40);
    set(QPalette::ToolTipText, 0xff202020, 0xffe4e4e2);
    set(QPalette::Highlight, 0xff4a8f4f, 0xff4f8f58);
    set(QPalette::HighlightedText, 0xffffffff, 0xffffffff);
    set(QPalette::Link, 0xff2a6f34, 0xff8fce84);
    set(QPalette::Light, 0xffffffff, 0xff505458);
    set(QPalette::Midlight, 0xfff8f8f6, 0xff44484b);
    set(QPalette::Mid, 0xffb8b8b4, 0xff6a6f74);
    set(QPalette::Dark, 0xff909090, 0xff17191a);
    set(QPalette::Shadow, 0xff606060, 0xff000000);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, color(0xff9a9a98, 0xff7a7d80));
    palette.setColor(QPalette::Disabled, QPalette::Base, color(0xffececea, 0xff2b2d2f));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, color(0xffb0b0ae, 0xff505458));
    return palette;
}

// The toolkit's style derives its outlines from the window's colour, darker: on a dark window fields and
// boxes without a tick could hardly be seen.
class DarkStyle : public QProxyStyle {
public:
    DarkStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
    {
    }

    void drawPrimitive(
        PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        const bool isField = element == PE_FrameLineEdit || element == PE_IndicatorCheckBox;
        if ((!isField && element != PE_IndicatorRadioButton) || option->state & State_HasFocus)
            return;
        painter->save();
        painter->setPen(
            option->palette.color(option->state & State_Enabled ? QPalette::Mid : QPalette::Midlight));
        painter->setBrush(Qt::NoBrush);
        const QRectF rim = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        painter->setRenderHint(QPainter::Antialiasing);
        if (element == PE_IndicatorRadioButton)
            painter->drawEllipse(rim);
        else
            painter->drawRoundedRect(rim, 2, 2);
        painter->restore();
    }
};

} // namespace

void kcuiSetTheme(KcUiTheme theme)
{
    if (theme == KcUiTheme::System)
        return;
    QApplication::setStyle(
        theme == KcUiTheme::Dark ? new DarkStyle() : QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(paletteOf(theme == KcUiTheme::Dark));
}

KcUiTheme kcuiThemeOfEnvironment()
{
    const QByteArray name = qgetenv("VERDELIS_THEME").toLower();
    return name == "dark" ? KcUiTheme::Dark : name == "light" ? KcUiTheme::Light : KcUiTheme::System;
}
