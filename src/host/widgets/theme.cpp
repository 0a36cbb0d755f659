// Palettes over the toolkit's own style.

#include "widgets/theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

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
    set(QPalette::Mid, 0xffb8b8b4, 0xff55595d);
    set(QPalette::Dark, 0xff909090, 0xff17191a);
    set(QPalette::Shadow, 0xff606060, 0xff000000);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, color(0xff9a9a98, 0xff7a7d80));
    palette.setColor(QPalette::Disabled, QPalette::Base, color(0xffececea, 0xff2b2d2f));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, color(0xffb0b0ae, 0xff505458));
    return palette;
}

} // namespace

void kcuiSetTheme(KcUiTheme theme)
{
    if (theme == KcUiTheme::System)
        return;
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(paletteOf(theme == KcUiTheme::Dark));
}

KcUiTheme kcuiThemeOfEnvironment()
{
    const QByteArray name = qgetenv("VERDELIS_THEME").toLower();
    return name == "dark" ? KcUiTheme::Dark : name == "light" ? KcUiTheme::Light : KcUiTheme::System;
}
