// Which file is read for a name.

#include "dxf/drawing_file.h"
#include "platform/files.h"

namespace dxf {

QString findDrawing(const QString& path)
{
    const QString name = platform::normalisedPath(path);
    if (name.endsWith(QLatin1String(".dwg"), Qt::CaseInsensitive))
        if (const QString beside = platform::findPath(name.chopped(3) + QStringLiteral("dxf"));
            QFileInfo(beside).isFile())
            return beside;
    return platform::findPath(name);
}

} // namespace dxf
