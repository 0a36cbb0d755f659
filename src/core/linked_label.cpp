// Where the parts of a label come to lie, and what binds them.

#include "core/linked_label.h"

#include "core/application.h"
#include "core/coordinates.h"
#include "core/draw.h"
#include "core/drawing_config.h"
#include "core/entity.h"
#include "core/jigs/leader_jig.h"
#include "core/label_layer.h"
#include "core/links.h"
#include "core/plain_text.h"
#include "core/tags.h"
#include "db/curves.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/text.h"
#include "ed/documents.h"

#include <numbers>

namespace {

// Attachments of multiline texts.
constexpr int kTopLeft = 1, kTopRight = 3, kBottomLeft = 7, kBottomRight = 9;

constexpr double kShoulderOverText = 1.2; ///< length of the shoulder in widths of the text
constexpr double kGapOfText = 1.0 / 5.0; ///< between text and shoulder, in heights of the text
constexpr double kMaskOverText = 1.1;
// Marks, in heights of the text.
constexpr double kDotRadius = 1.0 / 8.0, kCircleRadius = 1.0 / 4.0;
// A last segment less steep than this is meant to be level.
const double kNearlyLevel = std::tan(15.0 * std::numbers::pi / 180.0);

double textHeight()
{
    double scale = 100.0, height = 3.5;
    GetVerdelis(QStringLiteral("dDrawingScale"), scale);
    GetVerdelis(QStringLiteral("dTextHeight"), height);
    const double size = scale * height;
    return size > 0.0 && std::isfinite(size) ? size : 350.0;
}

std::unique_ptr<KcDbMText> makeText(const QString& text, KcGePoint3d location, int attachment)
{
    auto made = std::make_unique<KcDbMText>();
    KcDbMText::Data& data = made->data();
    data.height = textHeight();
    data.style = GetVdlCurrentTextStyle();
    data.location = location;
    data.attachment = attachment;
    data.normal = SetUcsVectorToWcs(KcGeVector3d::kZAxis);
    data.hasDirection = true;
    data.direction = SetUcsVectorToWcs({ 1.0, 0.0, 0.0 });
    if (bool masked = false; GetTextBackFill(masked) && masked) {
        constexpr int kWindowBackground = 2;
        data.fillMode = kWindowBackground;
        data.fillFactor = kMaskOverText;
    }
    made->setContents(multilineContents(text));
    return made;
}

KcDbObjectId append(std::unique_ptr<KcDbEntity> entity, const QString& code)
{
    KcDbDatabase* const database = kcedCurrentDatabase();
    entity->setDatabaseDefaults(*database);
    const KcDbObjectId id = AppendToModelSpace(std::move(entity), true, database);
    if (!code.isEmpty())
        CEntity::SetXData(id, tags::entityType, code);
    return id;
}

// A disc: a polyline of two half circles, as wide as its radius.
std::unique_ptr<KcDbEntity> makeDot(KcGePoint3d centre, double radius)
{
    auto dot = std::make_unique<KcDbPolyline>();
    dot->data().elevation = centre.z;
    dot->data().constantWidth = radius;
    const KcGeVector2d half{ radius / 2.0, 0.0 };
    for (const KcGePoint2d point : { centre.plan() - half, centre.plan() + half })
        dot->addVertex(point, 1.0);
    dot->setClosed(true);
    return dot;
}

KcGePoint3d moved(KcGePoint3d point, double right, double up)
{
    return point + SetUcsVectorToWcs({ right, up, 0.0 });
}

void group(const std::vector<KcDbObjectId>& ids)
{
    int grouping = 1;
    GetVerdelis(QStringLiteral("bDimGrouping"), grouping);
    if (grouping != 0)
        AddGroup(ids, QStringLiteral("*U"));
}

} // namespace

double labelTextWidth(const QString& text)
{
    return makeText(text, {}, kBottomLeft)->actualWidth();
}

std::vector<KcDbObjectId>
setDimtype(const std::vector<KcGePoint3d>& centres, double size, int count, int dimensionType)
{
    std::vector<KcDbObjectId> ids;
    const size_t trees = std::min(centres.size(), size_t(std::max(count, 0)));
    const bool lastDot = dimensionType == 1, dots = dimensionType == 2 || dimensionType == 4,
               circles = dimensionType == 3 || dimensionType == 4;
    for (size_t i = 0; i < trees; ++i) {
        if (dots || (lastDot && i + 1 == trees))
            ids.push_back(append(makeDot(centres[i], size * kDotRadius), {}));
        if (circles)
            ids.push_back(append(std::make_unique<KcDbCircle>(centres[i], size * kCircleRadius), {}));
    }
    return ids;
}

std::vector<KcDbObjectId> drawLinkedLabel(const LinkedLabel& label)
{
    if (label.leader.empty() || !kcedCurrentDatabase())
        return {};
    const bool right = label.rightward;
    auto text = makeText(label.text, {}, right ? kBottomRight : kBottomLeft);
    const double gap = text->actualHeight() * kGapOfText;
    const double length = std::max(label.shoulder, text->actualWidth() * kShoulderOverText);
    const KcGePoint3d end = moved(label.leader.back(), right ? length : -length, 0.0);
    text->data().location = moved(end, 0.0, gap);

    std::vector<KcDbObjectId> ids{ append(std::move(text), label.code) };
    const KcDbObjectId main = ids.front();
    std::vector<KcGePoint3d> path = label.leader;
    path.push_back(end);
    auto line = leaderThrough(path);
    line->data().normal = SetUcsVectorToWcs(KcGeVector3d::kZAxis);
    line->data().horizontal = SetUcsVectorToWcs({ 1.0, 0.0, 0.0 });
    const KcDbObjectId leader = append(std::move(line), label.code);
    ids.push_back(leader);
    if (!label.secondText.isEmpty())
        ids.push_back(append(
            makeText(label.secondText, moved(end, 0.0, -gap), right ? kTopRight : kTopLeft),
            tags::kind::textUnderLabel));
    if (label.code == tags::kind::treeLabel)
        CEntity::SetXData(main, tags::labelType, QString::number(label.dimensionType));
    for (const KcDbObjectId mark :
         setDimtype(label.places, textHeight(), int(label.places.size()), label.dimensionType))
        ids.push_back(mark);

    putLabelsOnLayer(ids, label.code, label.plantLayer);
    group(ids);
    linkLabel(main, { leader }, ids, label.counted);
    return ids;
}

std::vector<KcDbObjectId> Dimensions(
    const std::vector<KcGePoint3d>& points, const std::vector<KcGePoint3d>& leaderPoints,
    const QString& label, const std::vector<KcDbObjectId>& linked, const QString& secondText,
    const QString& code, KcDbObjectId /*reserved1*/, const QString& layer, KcDbObjectId /*reserved2*/)
{
    if (leaderPoints.empty())
        return {};
    LinkedLabel made;
    made.leader = leaderPoints;
    if (leaderPoints.size() > 1) {
        const KcGeVector3d last
            = SetWcsVectorToUcs(leaderPoints.back() - leaderPoints[leaderPoints.size() - 2]);
        made.rightward = last.x >= 0.0;
        int align = 1;
        GetVerdelis(QStringLiteral("bAutoAlign"), align);
        const double level = align != 0 ? kNearlyLevel : KcGeContext::gTol.equalVector;
        if (std::abs(last.y) <= level * std::abs(last.x)) {
            made.leader.pop_back();
            made.shoulder = std::abs(last.x);
        }
    }
    made.text = label;
    made.secondText = secondText;
    made.code = code;
    made.counted = linked;
    made.plantLayer = layer;
    if (code == tags::kind::treeLabel) {
        made.places = points;
        GetVerdelis(QStringLiteral("iDimType"), made.dimensionType);
    }
    return drawLinkedLabel(made);
}
