// Forms and units of labels.

#include "core/labels.h"

void SetDimStyle(QString& text, int style)
{
    if (style == 0)
        text = QLatin1Char('(') + text + QLatin1Char(')');
    else if (style == 1)
        text.prepend(QLatin1Char(' '));
    else if (style == 2)
        text.prepend(QLatin1Char('-'));
}

QString SetTreeDim(int count, int style, int unit)
{
    QString text = QString::number(count);
    if (unit == 1)
        text += QStringLiteral("株");
    else if (unit == 2)
        text += QStringLiteral("丛");
    SetDimStyle(text, style);
    return text;
}

QString SetAreaDim(int unit)
{
    static const QString units[] = { QStringLiteral("m²"), {}, QStringLiteral("m2"), QStringLiteral("M2") };
    return unit >= 0 && unit < 4 ? units[unit] : QString();
}
