// Printing, polar points, distances.

#include "ed/util.h"

#include "ed/console.h"

#include <cstdarg>

void kcutPrintf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const QString text = QString::vasprintf(format, arguments);
    va_end(arguments);
    kcedPrint(text);
}

void kcutPrintf(const QString& text)
{
    kcedPrint(text);
}

KcGePoint3d kcutPolar(KcGePoint3d point, double angle, double distance)
{
    return point + KcGeVector3d{ distance * std::cos(angle), distance * std::sin(angle), 0.0 };
}

double kcutDistance(KcGePoint3d p, KcGePoint3d q)
{
    return p.distanceTo(q);
}
