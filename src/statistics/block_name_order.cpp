// Reading and writing the block name order.
#include "statistics/block_name_order.h"

#include "exchange/markup_document.h"
#include "frame/settings.h"
#include "platform/files.h"

namespace {

const QString orderTable = QStringLiteral("块名顺序表");
const QString orderSection = QStringLiteral("ORDER SETTINGS");
const QString idWithExcelKey = QStringLiteral("iIdWithExcel");

// Goes to the table of the order below the root element; false when the document has none.
bool findOrderTable(MarkupDocument& document)
{
    document.ResetPos();
    if (!document.FindElem() || !document.IntoElem())
        return false;
    while (document.FindElem(QStringLiteral("Table")))
        if (document.FindChildElem(QStringLiteral("Name")) && document.GetChildData() == orderTable)
            return true;
    return false;
}

// Adds the table of the order, and the root element if there is none, and goes to it.
void addOrderTable(MarkupDocument& document)
{
    document.ResetPos();
    if (!document.FindElem())
        document.AddElem(QStringLiteral("BlockNameOrder"));
    document.IntoElem();
    document.AddElem(QStringLiteral("Table"));
    document.AddChildElem(QStringLiteral("Name"), orderTable);
}

} // namespace

platform::Result<QStringList> readBlockNameOrder(const QString& path)
{
    MarkupDocument document;
    if (!document.Load(path))
        return platform::Result<QStringList>::failure(document.GetError());
    QStringList names;
    if (findOrderTable(document)) {
        document.IntoElem();
        while (document.FindElem(QStringLiteral("Item")))
            if (document.FindChildElem(QStringLiteral("BlockName")) && !document.GetChildData().isEmpty())
                names += document.GetChildData();
    }
    return { names, {} };
}

platform::Status writeBlockNameOrder(const QString& path, const QStringList& names)
{
    MarkupDocument document;
    if (!document.Load(path)) {
        if (QFileInfo::exists(platform::findPath(path)))
            return { document.GetError() };
        document.SetDoc(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
    }
    if (!findOrderTable(document))
        addOrderTable(document);
    document.IntoElem();
    while (document.FindElem(QStringLiteral("Item")))
        document.RemoveElem();
    document.ResetMainPos();
    for (qsizetype i = 0; i < names.size(); ++i) {
        document.AddElem(QStringLiteral("Item"));
        document.AddChildElem(QStringLiteral("ID"), QString::number(i));
        document.AddChildElem(QStringLiteral("BlockName"), names[i]);
    }
    return { document.Save(path) ? QString() : document.GetError() };
}

int readIdWithExcel(const QString& iniPath)
{
    return CVdlIni(iniPath).integer(orderSection, idWithExcelKey, 0);
}

bool writeIdWithExcel(const QString& iniPath, int value)
{
    return CVdlIni(iniPath).WriteInt(orderSection, idWithExcelKey, value);
}
