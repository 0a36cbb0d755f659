// Names of entity kinds in drawing files, from the published class names.

#include "db/raw_entity.h"
#include "ed/selection_filter.h"

namespace {

QString typeNameOf(const KcRxClass* type)
{
    struct Row {
        const char* className;
        const char* typeName;
    };
    static constexpr Row rows[] = {
        { "AcDbBlockReference", "INSERT" },
        { "AcDbTable", "ACAD_TABLE" },
        { "AcDbLine", "LINE" },
        { "AcDbArc", "ARC" },
        { "AcDbCircle", "CIRCLE" },
        { "AcDbEllipse", "ELLIPSE" },
        { "AcDbSpline", "SPLINE" },
        { "AcDbXline", "XLINE" },
        { "AcDbRay", "RAY" },
        { "AcDbPoint", "POINT" },
        { "AcDbTrace", "TRACE" },
        { "AcDbSolid", "SOLID" },
        { "AcDbFace", "3DFACE" },
        { "AcDbPolyline", "LWPOLYLINE" },
        { "AcDb2dPolyline", "POLYLINE" },
        { "AcDbVertex", "VERTEX" },
        { "AcDbSequenceEnd", "SEQEND" },
        { "AcDbText", "TEXT" },
        { "AcDbAttribute", "ATTRIB" },
        { "AcDbAttributeDefinition", "ATTDEF" },
        { "AcDbMText", "MTEXT" },
        { "AcDbHatch", "HATCH" },
        { "AcDbLeader", "LEADER" },
        { "AcDbViewport", "VIEWPORT" },
        { "AcDbWipeout", "WIPEOUT" },
        { "AcDbBlockBegin", "BLOCK" },
        { "AcDbBlockEnd", "ENDBLK" },
    };
    for (const KcRxClass* c = type; c; c = c->parent())
        for (const Row& row : rows)
            if (qstrcmp(row.className, c->name()) == 0)
                return QString::fromLatin1(row.typeName);
    return QString::fromLatin1(type->name());
}

} // namespace

const QString& kcedEntityTypeName(const KcDbEntity& entity)
{
    static std::unordered_map<const void*, QString> names;
    const KcRxClass* type = entity.isA();
    if (type == KcDbRawEntity::desc()) {
        static std::unordered_map<std::string, QString> rawNames;
        const QByteArray& fileName = static_cast<const KcDbRawEntity&>(entity).fileName();
        QString& name = rawNames[fileName.toStdString()];
        if (name.isEmpty())
            name = QString::fromLatin1(fileName);
        return name;
    }
    QString& name = names[type];
    if (name.isEmpty())
        name = typeNameOf(type);
    return name;
}
