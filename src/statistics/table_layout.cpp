// Moving about in the table layout document.

#include "statistics/table_layout.h"

#include "core/application.h"

platform::Result<MarkupDocument> loadTableLayout()
{
    MarkupDocument document;
    const QString path = GetAppRoot() + QStringLiteral("Sys/VDLTbInfo.xml");
    if (!document.Load(path))
        return platform::Result<MarkupDocument>::failure(
            QStringLiteral("表格布局文件%1无法读取。").arg(path));
    return { document, {} };
}

bool findTable(MarkupDocument& layout, const QString& name)
{
    layout.ResetPos();
    if (!layout.FindElem() || !layout.IntoElem())
        return false;
    while (layout.FindElem(QStringLiteral("Table")))
        if (childText(layout, QStringLiteral("Name")) == name)
            return true;
    return false;
}

QString childText(MarkupDocument& document, const QString& child)
{
    document.ResetChildPos();
    return document.FindChildElem(child) ? document.GetChildData() : QString();
}

void setChildText(MarkupDocument& document, const QString& child, const QString& text)
{
    document.ResetChildPos();
    if (document.FindChildElem(child))
        document.SetChildData(text);
    else
        document.AddChildElem(child, text);
}
