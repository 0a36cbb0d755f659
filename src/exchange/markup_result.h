// The result of reading, parsing or writing a markup document, put together as a row of empty elements.
#pragma once

#include "exchange/markup_scanner.h"

#include <initializer_list>
#include <utility>

namespace markup {

/// One result item; attributes with an empty value are left out.
inline QString
resultItem(const char* name, std::initializer_list<std::pair<const char*, QString>> attributes = {})
{
    QString item = QLatin1Char('<') + QLatin1String(name);
    for (const auto& [attribute, value] : attributes)
        if (!value.isEmpty())
            item += QLatin1Char(' ') + QLatin1String(attribute) + QLatin1String("=\"") + escape(value, true)
                + QLatin1Char('"');
    return item + QLatin1String("/>");
}

} // namespace markup
