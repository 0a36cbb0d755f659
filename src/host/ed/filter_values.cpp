// Where each kind of entity keeps the values that filters ask for.

#include "ed/filter_values.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/database.h"
#include "db/dictionary.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/tables.h"
#include "db/text.h"
#include "ed/selection_filter.h"

namespace {

using Value = KcDbTypedValue::Value;

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

QString styleName(KcDbObjectId style)
{
    return style.isNull() ? QStringLiteral("Standard") : kcdbRecordName(style);
}

std::optional<Value> textOf(const KcDbEntity& entity)
{
    if (const auto* text = as<KcDbText>(entity))
        return text->textString();
    if (const auto* text = as<KcDbMText>(entity))
        return text->contents();
    return {};
}

std::optional<Value> nameOf(const KcDbEntity& entity)
{
    if (const auto* reference = as<KcDbBlockReference>(entity))
        return kcdbRecordName(reference->blockTableRecord());
    if (const auto* hatch = as<KcDbHatch>(entity))
        return hatch->patternName();
    if (const auto* attribute = as<KcDbAttribute>(entity))
        return attribute->attribute().tag;
    if (const auto* definition = as<KcDbAttributeDefinition>(entity))
        return definition->attribute().tag;
    return {};
}

std::optional<Value> textStyleOf(const KcDbEntity& entity)
{
    if (const auto* text = as<KcDbText>(entity))
        return styleName(text->data().style);
    if (const auto* text = as<KcDbMText>(entity))
        return styleName(text->data().style);
    return {};
}

std::optional<Value> placeOf(const KcDbEntity& entity)
{
    if (const auto* reference = as<KcDbBlockReference>(entity))
        return reference->position();
    if (const auto* line = as<KcDbLine>(entity))
        return line->data().start;
    if (const auto* circle = as<KcDbCircle>(entity))
        return circle->center();
    if (const auto* arc = as<KcDbArc>(entity))
        return arc->center();
    if (const auto* ellipse = as<KcDbEllipse>(entity))
        return ellipse->data().center;
    if (const auto* point = as<KcDbPoint>(entity))
        return point->data().position;
    if (const auto* text = as<KcDbText>(entity))
        return KcGeMatrix3d::planeToWorld(text->data().normal) * text->data().position;
    if (const auto* text = as<KcDbMText>(entity))
        return text->data().location;
    return {};
}

std::optional<Value> sizeOf(const KcDbEntity& entity)
{
    if (const auto* circle = as<KcDbCircle>(entity))
        return circle->radius();
    if (const auto* arc = as<KcDbArc>(entity))
        return arc->radius();
    if (const auto* ellipse = as<KcDbEllipse>(entity))
        return ellipse->data().radiusRatio;
    if (const auto* text = as<KcDbText>(entity))
        return text->height();
    if (const auto* text = as<KcDbMText>(entity))
        return text->data().height;
    return {};
}

std::optional<Value> angleOf(const KcDbEntity& entity)
{
    if (const auto* reference = as<KcDbBlockReference>(entity))
        return reference->rotation();
    if (const auto* arc = as<KcDbArc>(entity))
        return arc->data().startAngle;
    if (const auto* text = as<KcDbText>(entity))
        return text->data().rotation;
    if (const auto* text = as<KcDbMText>(entity))
        return text->rotation();
    return {};
}

std::optional<Value> scaleOf(const KcDbEntity& entity, int code)
{
    if (const auto* reference = as<KcDbBlockReference>(entity)) {
        const KcGeVector3d scale = reference->scaleFactors();
        return code == 41 ? scale.x : code == 42 ? scale.y : scale.z;
    }
    if (const auto* text = as<KcDbText>(entity); text && code == 41)
        return text->data().widthFactor;
    if (const auto* text = as<KcDbMText>(entity); text && code == 41)
        return text->data().width;
    if (const auto* hatch = as<KcDbHatch>(entity); hatch && code == 41)
        return hatch->data().patternScale;
    return {};
}

std::optional<Value> flagsOf(const KcDbEntity& entity)
{
    if (const auto* polyline = as<KcDbPolyline>(entity))
        return int64_t(polyline->data().flags);
    if (const auto* polyline = as<KcDb2dPolyline>(entity))
        return int64_t(polyline->data().flags);
    if (const auto* spline = as<KcDbSpline>(entity))
        return int64_t(spline->data().flags);
    if (const auto* hatch = as<KcDbHatch>(entity))
        return int64_t(hatch->data().solid);
    if (const auto* attribute = as<KcDbAttribute>(entity))
        return int64_t(attribute->attribute().flags);
    return {};
}

std::optional<Value> thicknessOf(const KcDbEntity& entity)
{
    if (const auto* line = as<KcDbLine>(entity))
        return line->data().thickness;
    if (const auto* circle = as<KcDbCircle>(entity))
        return circle->data().thickness;
    if (const auto* arc = as<KcDbArc>(entity))
        return arc->data().thickness;
    if (const auto* polyline = as<KcDbPolyline>(entity))
        return polyline->data().thickness;
    if (const auto* text = as<KcDbText>(entity))
        return text->data().thickness;
    return {};
}

std::optional<Value> layoutNameOf(const KcDbEntity& entity)
{
    const KcDbRead<KcDbBlockTableRecord> space(entity.ownerId());
    if (!space || !space->isLayout())
        return {};
    if (space->isModelSpace())
        return QStringLiteral("Model");
    const KcDbRead<KcDbLayout> layout(space->data().layout);
    return layout ? std::optional<Value>(layout->data().name) : std::nullopt;
}

} // namespace

QString kcedLinetypeName(const KcDbEntity& entity)
{
    return entity.linetypeId().isNull() ? QStringLiteral("BYLAYER") : kcdbRecordName(entity.linetypeId());
}

bool kcedIsInPaperSpace(const KcDbEntity& entity)
{
    const KcDbRead<KcDbBlockTableRecord> space(entity.ownerId());
    return space ? space->isLayout() && !space->isModelSpace() : entity.isInPaperSpace();
}

std::optional<Value> kcedFilterValue(const KcDbEntity& entity, int code)
{
    switch (code) {
    case 0:
        return kcedEntityTypeName(entity);
    case 1:
        return textOf(entity);
    case 2:
        return nameOf(entity);
    case 3:
        if (const auto* leader = as<KcDbLeader>(entity))
            return styleName(leader->data().dimStyle);
        return {};
    case 5:
        return QString::number(entity.handle(), 16).toUpper();
    case 6:
        return kcedLinetypeName(entity);
    case 7:
        return textStyleOf(entity);
    case 8:
        return entity.layer();
    case 10:
        return placeOf(entity);
    case 39:
        return thicknessOf(entity);
    case 40:
        return sizeOf(entity);
    case 41:
    case 42:
    case 43:
        return scaleOf(entity, code);
    case 48:
        return entity.linetypeScale();
    case 50:
        return angleOf(entity);
    case 60:
        return int64_t(entity.isVisible() ? 0 : 1);
    case 62:
        return int64_t(entity.colorIndex());
    case 67:
        return int64_t(kcedIsInPaperSpace(entity));
    case 70:
        return flagsOf(entity);
    case 370:
        return int64_t(entity.lineWeight());
    case 410:
        return layoutNameOf(entity);
    default:
        return {};
    }
}
