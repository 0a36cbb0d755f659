// BLOCKARRAY: places copies of plant symbols at regular intervals along a path.

#include "core/block.h"
#include "core/long_work.h"
#include "core/prompts.h"
#include "db/curves.h"
#include "db/polyline.h"
#include "ed/console.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "frame/settings.h"
#include "planting/array_places.h"
#include "planting/commands.h"

namespace {

/// More copies than this are a slip of the hand.
constexpr int kMostCopies = 1'000'000;

// What is remembered from one run to the next.
struct Answers {
    double spacing = 4500.0;
    double offset = 0.0;
    int count = 10;
    bool byDistance = true;
    bool turned = false;
};

const QString section = QStringLiteral("PREVIOUS DATA");

Answers readAnswers()
{
    const CVdlIni settings = productSettings();
    Answers answers;
    const double spacing = settings.real(section, QStringLiteral("dBlockArrayDistance"), answers.spacing);
    const double offset
        = std::abs(settings.real(section, QStringLiteral("dBlockArrayOffsetDistance"), answers.offset));
    // A file that somebody wrote by hand may hold anything.
    if (spacing > 0.0 && std::isfinite(spacing))
        answers.spacing = spacing;
    if (std::isfinite(offset))
        answers.offset = offset;
    answers.count
        = std::max(1, settings.integer(section, QStringLiteral("nBlockArrayDivide"), answers.count));
    answers.byDistance
        = settings.integer(section, QStringLiteral("bBlockArrayIsDistance"), answers.byDistance) != 0;
    answers.turned = settings.integer(section, QStringLiteral("bBlockArrayIsRotate"), answers.turned) != 0;
    return answers;
}

void writeAnswers(const Answers& answers)
{
    const CVdlIni settings = productSettings();
    settings.WriteDouble(section, QStringLiteral("dBlockArrayDistance"), answers.spacing);
    settings.WriteDouble(section, QStringLiteral("dBlockArrayOffsetDistance"), std::abs(answers.offset));
    settings.WriteInt(section, QStringLiteral("nBlockArrayDivide"), answers.count);
    settings.WriteInt(section, QStringLiteral("bBlockArrayIsDistance"), answers.byDistance);
    settings.WriteInt(section, QStringLiteral("bBlockArrayIsRotate"), answers.turned);
}

bool hasParallels(const KcDbCurve& curve)
{
    return curve.isKindOf(KcDbLine::desc()) || curve.isKindOf(KcDbPolyline::desc())
        || curve.isKindOf(KcDbSpline::desc());
}

// The parallel of a curve on the side of a point. Says why when there is none.
KcGeCurve3d parallelBeside(const KcDbCurve& curve, double distance, KcGePoint3d side)
{
    KcGePoint3d nearest;
    KcGeVector3d tangent;
    if (curve.getClosestPointTo(side, nearest) != Kcad::eOk
        || curve.getFirstDeriv(nearest, tangent) != Kcad::eOk) {
        kcedPrint(QStringLiteral("\n偏移失败!\n"));
        return {};
    }
    const bool isLeft = tangent.angleTo(side - nearest, KcGeVector3d::kZAxis) <= kPi;
    double signedDistance = isLeft ? -distance : distance;
    // The host counts the other way round for lines, and for curves that are drawn in a plane turned over.
    if (curve.isKindOf(KcDbLine::desc()))
        signedDistance = -signedDistance;
    else if (curve.curve().normal().value_or(KcGeVector3d::kZAxis).z < 0.0)
        signedDistance = -signedDistance;

    KcDbCurve::Curves parallels;
    if (curve.getOffsetCurves(signedDistance, parallels) != Kcad::eOk)
        kcedPrint(QStringLiteral("\n偏移失败!\n"));
    else if (parallels.size() > 1)
        kcedPrint(QStringLiteral("\n偏移失败,获得曲线数量大于1\n"));
    else if (parallels.empty())
        kcedPrint(QStringLiteral("\n偏移失败,无法获得曲线!\n"));
    else if (!hasParallels(*parallels.front()))
        kcedPrint(QStringLiteral("\n偏移失败!\n"));
    else
        return parallels.front()->curve();
    return {};
}

// Asks for the curve and, where it can have one, for the parallel to take instead. Empty when there is none.
KcGeCurve3d askPath(Answers& answers)
{
    KcDbObjectId picked;
    if (!GetEntity(
            picked, localised(QStringLiteral("PLEASESELECTTHEPATH")), false,
            kcutBuildList(0, "LINE,ARC,LWPOLYLINE,POLYLINE,SPLINE")))
        return {};
    const KcDbRead<KcDbCurve> curve(picked);
    if (!curve)
        return {};
    const KcGeCurve3d path = curve->curve();
    if (!path.length()) {
        kcedSay(QStringLiteral("所选路径没有长度。"));
        return {};
    }
    if (!hasParallels(*curve)) {
        answers.offset = 0.0;
        return path;
    }
    constexpr double kZeroAllowed = -0.001;
    if (!GetDouble(
            answers.offset, QStringLiteral("\n请输入偏移距离<%1>: ").arg(answers.offset, 0, 'f', 0),
            kZeroAllowed))
        return {};
    if (!(answers.offset > 0.0))
        return path;
    KcGePoint3d side;
    if (!GetPoint(side, QStringLiteral("\n请选择要偏移的那一侧上的点:")))
        return {};
    return parallelBeside(*curve, answers.offset, side);
}

// Asks for the spacing or the number of positions. False when the user cancels.
bool askDivision(double length, Answers& answers)
{
    const QString keywords = QStringLiteral("D");
    for (;;) {
        QString keyword;
        const bool answered = answers.byDistance
            ? GetDouble(
                answers.spacing,
                QStringLiteral("\n请输入阵列间距或 [定量等分(D)]<%1>: ").arg(answers.spacing, 0, 'f', 0), 0.0,
                keywords, keyword)
            : GetInt(
                answers.count, QStringLiteral("\n请输入阵列个数或 [定距等分(D)]<%1>: ").arg(answers.count), 1,
                keywords, keyword);
        if (!answered)
            return false;
        if (keyword == keywords)
            answers.byDistance = !answers.byDistance;
        else if (!keyword.isEmpty())
            kcedPrint(QStringLiteral("\n 无效关键字"));
        else if (answers.byDistance ? length / answers.spacing < kMostCopies : answers.count <= kMostCopies)
            return true;
        else
            kcedSay(QStringLiteral("阵列个数超过%1个，请重新输入。").arg(kMostCopies));
    }
}

// Asks for the symbols; an empty answer switches whether they turn with the path. False when the user
// cancels.
bool askSymbols(std::vector<KcDbObjectId>& symbols, Answers& answers)
{
    for (bool isEmpty = true; isEmpty;) {
        if (!GetSelectionAcceptEmpty(
                symbols, kcutBuildList(0, "INSERT"),
                QStringLiteral("\n请选择图块(多选时按照选择顺序排列)或 [旋转图块(空格)<%1>]: ")
                    .arg(answers.turned ? QStringLiteral("是") : QStringLiteral("否")),
                isEmpty))
            return false;
        if (isEmpty)
            answers.turned = !answers.turned;
    }
    if (symbols.empty())
        kcedPrint(QStringLiteral("\n 未选中任何图块"));
    return !symbols.empty();
}

struct Symbol {
    KcDbObjectId id;
    KcGePoint3d position, centre;
    double direction = 0.0; ///< of its X axis in the plan, radians
};

// The symbols that can be read, in their order.
std::vector<Symbol> readSymbols(const std::vector<KcDbObjectId>& ids)
{
    std::vector<Symbol> symbols;
    for (const KcDbObjectId id : ids) {
        CBlock block;
        Symbol symbol{ id, {}, {}, 0.0 };
        if (!block.Initialize(id) || !block.GetPosition(symbol.position)
            || !block.GetCenterPointBoundaryBox(symbol.centre))
            continue;
        // The rotation, but of a symbol that was turned over as it is seen from above.
        const KcDbRead<KcDbBlockReference> reference(id);
        const KcGeVector3d axis = KcGeMatrix3d::planeToWorld(reference->data().normal)
            * KcGeVector3d{ std::cos(reference->rotation()), std::sin(reference->rotation()), 0.0 };
        symbol.direction = KcGeVector2d{ axis.x, axis.y }.angle();
        symbols.push_back(symbol);
    }
    return symbols;
}

// Leads the centre of a symbol to a place, its height to that of the place, and turns it along the path.
KcGeMatrix3d toPlace(const Symbol& symbol, const ArrayPlace& place, bool turned)
{
    const KcGeVector3d move{ place.point.x - symbol.centre.x, place.point.y - symbol.centre.y,
                             place.point.z - symbol.position.z };
    const KcGeMatrix3d moved = KcGeMatrix3d::translation(move);
    if (!turned)
        return moved;
    KcGeMatrix3d turn;
    turn.setToRotation(place.angle - symbol.direction, KcGeVector3d::kZAxis, symbol.centre);
    return moved * turn;
}

int placeSymbols(const std::vector<Symbol>& symbols, const std::vector<ArrayPlace>& places, bool turned)
{
    constexpr size_t kWithoutMeter = 2000;
    LongWork meter(QStringLiteral("正在布置%1个图块"), places.size(), kWithoutMeter);
    const KcDbObjectId modelSpace = kcedCurrentDatabase()->modelSpace();
    int placed = 0;
    for (const ArrayPlace& place : places) {
        const Symbol& symbol = symbols[size_t(placed) % symbols.size()];
        if (kcedCopyEntity(symbol.id, toPlace(symbol, place, turned), modelSpace).isNull())
            break;
        ++placed;
        if (!meter.advance())
            break;
    }
    return placed;
}

} // namespace

void arrayBlocks()
{
    Answers answers = readAnswers();
    const KcGeCurve3d path = askPath(answers);
    const std::optional<double> length = path.length();
    if (!length)
        return;
    std::vector<KcDbObjectId> selected;
    if (!askDivision(*length, answers) || !askSymbols(selected, answers))
        return;
    ArrayDivision division{ answers.byDistance, answers.spacing, answers.count, false };
    if (answers.byDistance) {
        KcGePoint3d start;
        if (!GetPoint(start, QStringLiteral("\n请选择阵列路径起点:")))
            return;
        division.fromEnd = start.distanceTo(*path.endPoint()) < start.distanceTo(*path.startPoint());
    }

    const std::vector<Symbol> symbols = readSymbols(selected);
    if (symbols.empty())
        return kcedSay(QStringLiteral("所选图块无法读取或没有图形，未生成阵列。"));
    const KcApDocLock lock;
    if (!lock)
        return kcedSay(QStringLiteral("图形当前不能修改，未生成阵列。"));
    const std::vector<ArrayPlace> places = arrayPlaces(path, division);
    const int placed = placeSymbols(symbols, places, answers.turned);
    kcedSay(
        size_t(placed) == places.size() ? QStringLiteral("已布置%1个图块。").arg(placed)
                                        : QStringLiteral("已布置%1个图块，其余%2个未布置。")
                                              .arg(placed)
                                              .arg(places.size() - size_t(placed)));
    if (const double step = arrayStep(*length, division); step > 0.0)
        answers.spacing = step;
    writeAnswers(answers);
}
