// Which fonts show a text: stretches of one family each.
#pragma once

#include "gi/text_metrics.h"

#include <QFont>

#include <utility>

/// A font of a family at a size in pixels, without hints: outlines scale evenly.
inline QFont kcgiFont(const KcGi::TextStyle& style, const QString& family, int pixels)
{
    QFont font(family);
    font.setPixelSize(pixels);
    font.setBold(style.bold);
    font.setItalic(style.italic);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// Calls `part(family, text)` for each stretch of a text that one family shows, in order.
template <class Part> void kcgiForFamilies(const KcGi::TextStyle& style, const QString& text, Part part)
{
    const QString family = KcGi::fontForStyle(style.font, style.bigFont, style.typeface);
    QString stretch, current = family;
    for (const char32_t character : text.toUcs4()) {
        const char32_t c = KcGi::drawnCharacter(character);
        const QString own = KcGi::fontForCharacter(c, family, style.bold, style.italic);
        if (own != current && !stretch.isEmpty())
            part(current, std::exchange(stretch, QString()));
        current = own;
        stretch += QString::fromUcs4(&c, 1);
    }
    if (!stretch.isEmpty())
        part(current, stretch);
}
