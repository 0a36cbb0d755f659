// Carrying out selections.

#include "ed/selection.h"

#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/database.h"
#include "db/spatial_index.h"
#include "db/symbol_table.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/pick_region.h"
#include "ed/system_variables.h"
#include "ed/view.h"

namespace {

using Mode = KcEdSelectionLine::Mode;
using Ids = std::vector<KcDbObjectId>;

// Curves in a window of this many chord tolerances' width are exact enough to the eye.
constexpr double kTolerancesInWindow = 2000.0;

struct Found {
    Ids ids;
    QString refusal;
};

Ids passing(const Ids& ids, const KcEdCompiledFilter& filter)
{
    Ids result;
    for (const KcDbObjectId id : ids)
        if (const KcDbRead<KcDbEntity> entity(id); entity && filter.passes(*entity))
            result.push_back(id);
    return result;
}

std::vector<KcGePoint2d> toWorld(const KcDbDatabase& database, const std::vector<KcGePoint3d>& points)
{
    const KcGeMatrix3d ucs = database.ucsToWorld();
    std::vector<KcGePoint2d> result;
    for (const KcGePoint3d p : points)
        result.push_back((ucs * p).plan());
    return result;
}

// A rectangle along the axes of the user coordinate system.
std::vector<KcGePoint3d> rectangle(KcGePoint3d a, KcGePoint3d b)
{
    return { a, { b.x, a.y, a.z }, b, { a.x, b.y, a.z } };
}

// Visible entities of the current space that a region selects, in drawing order.
Ids inRegion(const KcDbDatabase& database, const KcEdPickRegion& region, const KcEdCompiledFilter& filter)
{
    const double size = std::max(region.box().width(), region.box().height());
    KcEdPickGeometry geometry(std::max(size / kTolerancesInWindow, KcGeContext::gTol.equalPoint));
    Ids ids;
    const KcGeExtents2d box{ region.box().min.plan(), region.box().max.plan() };
    for (const KcDbObjectId id : database.spatialIndex().crossing(database.currentSpace(), box)) {
        const KcDbRead<KcDbEntity> entity(id);
        if (entity && geometry.isVisible(*entity) && filter.passes(*entity)
            && region.selects(*entity, geometry))
            ids.push_back(id);
    }
    return ids;
}

// Everything in the current space that is not on a frozen or locked layer.
Ids allOfSpace(const KcDbDatabase& database, const KcEdCompiledFilter& filter)
{
    Ids ids;
    KcEdPickGeometry layers(1.0);
    const KcDbRead<KcDbBlockTableRecord> space(database.currentSpace());
    if (!space)
        return ids;
    for (const KcDbObjectId id : *space) {
        const KcDbRead<KcDbEntity> entity(id);
        if (entity && filter.passes(*entity) && !layers.isOnFrozenLayer(*entity)
            && !layers.isOnLockedLayer(*entity))
            ids.push_back(id);
    }
    return ids;
}

Ids allOfLayouts(KcDbDatabase& database, const KcEdCompiledFilter& filter)
{
    Ids ids;
    const KcDbRead<KcDbSymbolTable> blocks(database.blockTable());
    for (const KcDbObjectId block : blocks->records()) {
        const KcDbRead<KcDbBlockTableRecord> record(block);
        if (!record || !record->isLayout())
            continue;
        for (const KcDbObjectId id : passing(record->entityIds(), filter))
            ids.push_back(id);
    }
    return ids;
}

Ids lastEntity(const KcDbDatabase& database)
{
    const KcDbRead<KcDbBlockTableRecord> space(database.currentSpace());
    if (!space)
        return {};
    KcEdPickGeometry layers(1.0);
    const Ids all = space->entityIds();
    for (auto id = all.rbegin(); id != all.rend(); ++id)
        if (const KcDbRead<KcDbEntity> entity(*id); entity && layers.isVisible(*entity))
            return { *id };
    return {};
}

KcEdPickRegion pickBox(const KcDbDatabase& database, KcGePoint3d point)
{
    const double half = kcedPickBoxSize() / 2.0;
    const KcGePoint3d p = database.ucsToWorld() * point;
    return KcEdPickRegion(
        KcEdPickRegion::Kind::Crossing,
        { { p.x - half, p.y - half },
          { p.x + half, p.y - half },
          { p.x + half, p.y + half },
          { p.x - half, p.y + half } });
}

Ids entitiesAt(KcGePoint3d point, const KcEdCompiledFilter& filter)
{
    KcDbDatabase* database = kcedCurrentDatabase();
    if (!database)
        return {};
    const KcEdPickRegion box = pickBox(*database, point);
    KcEdPickGeometry geometry(std::max(kcedPickBoxSize() / 8.0, KcGeContext::gTol.equalPoint));
    Ids byLine, byInside;
    for (const KcDbObjectId id : inRegion(*database, box, filter)) {
        const KcDbRead<KcDbEntity> entity(id);
        switch (box.touches(geometry.pieces(*entity))) {
        case KcEdPickRegion::Touch::Line:
            byLine.push_back(id);
            break;
        case KcEdPickRegion::Touch::Inside:
            byInside.push_back(id);
            break;
        case KcEdPickRegion::Touch::None:
            break;
        }
    }
    std::reverse(byLine.begin(), byLine.end());
    byLine.insert(byLine.end(), byInside.rbegin(), byInside.rend());
    return byLine;
}

Found entitiesByHandle(const KcDbDatabase& database, const std::vector<KcDbHandle>& handles)
{
    Found found;
    for (const KcDbHandle handle : handles) {
        const KcDbObjectId id = database.findHandle(handle);
        const KcDbRead<KcDbEntity> entity(id);
        const KcDbRead<KcDbBlockTableRecord> owner(entity ? entity->ownerId() : KcDbObjectId());
        if (!entity || !owner || !owner->isLayout()) {
            found.refusal = QStringLiteral("There is no object #%1 to select.")
                                .arg(QString::number(handle, 16).toUpper());
            return found;
        }
        found.ids.push_back(id);
    }
    return found;
}

Found evaluate(KcApDocument& document, const KcEdSelectionLine& line, const KcEdCompiledFilter& filter)
{
    KcDbDatabase& database = document.database();
    const auto region = [&](KcEdPickRegion::Kind kind, const std::vector<KcGePoint3d>& points) {
        return Found{ inRegion(database, KcEdPickRegion(kind, toWorld(database, points)), filter), {} };
    };
    switch (line.mode) {
    case Mode::All:
        return { allOfSpace(database, filter), {} };
    case Mode::Window:
        return region(KcEdPickRegion::Kind::Window, rectangle(line.points[0], line.points[1]));
    case Mode::Crossing:
        return region(KcEdPickRegion::Kind::Crossing, rectangle(line.points[0], line.points[1]));
    case Mode::WindowPolygon:
        return region(KcEdPickRegion::Kind::Window, line.points);
    case Mode::CrossingPolygon:
        return region(KcEdPickRegion::Kind::Crossing, line.points);
    case Mode::Fence:
        return region(KcEdPickRegion::Kind::Fence, line.points);
    case Mode::Last:
        return { passing(lastEntity(database), filter), {} };
    case Mode::Previous:
        return { passing(document.lastSelection.ids(), filter), {} };
    case Mode::Handles: {
        Found found = entitiesByHandle(database, line.handles);
        found.ids = passing(found.ids, filter);
        return found;
    }
    case Mode::Point: {
        Ids ids = entitiesAt(line.points[0], filter);
        ids.resize(std::min<size_t>(ids.size(), 1));
        return { std::move(ids), {} };
    }
    case Mode::Add:
    case Mode::Remove:
        break;
    }
    return {};
}

QString apply(
    KcApDocument& document, const KcEdSelectionLine& line, const KcEdCompiledFilter& filter,
    KcEdSelectionSet& set)
{
    Found found = evaluate(document, line, filter);
    if (!found.refusal.isEmpty())
        return found.refusal;
    if (line.mode == Mode::Add || line.mode == Mode::Remove)
        return {};
    if (line.removes) {
        const size_t removed = set.remove(found.ids);
        kcedSay(QStringLiteral("%1 removed, %2 total").arg(removed).arg(set.size()));
        return {};
    }
    const size_t count = found.ids.size();
    if (set.isEmpty() && line.mode != Mode::Handles)
        set = KcEdSelectionSet(std::move(found.ids)); // a walk gives no doubles
    else
        set.add(found.ids);
    kcedSay(
        count == set.size() ? QStringLiteral("%1 found").arg(count)
                            : QStringLiteral("%1 found, %2 total").arg(count).arg(set.size()));
    return {};
}

KcGePoint3d centerInUcs(const KcDbDatabase& database, KcDbObjectId id)
{
    const KcDbRead<KcDbEntity> entity(id);
    const KcGeExtents3d box = entity ? entity->geomExtents() : KcGeExtents3d();
    return box.isEmpty() ? KcGePoint3d() : database.ucsToWorld().inverse() * box.center();
}

KcEdSelectionLine lineFor(
    const QString& mode, const KcGePoint3d* p1, const KcGePoint3d* p2, const std::vector<KcGePoint3d>& points)
{
    KcEdSelectionLine line;
    line.points = points;
    if (points.empty() && p1)
        line.points.push_back(*p1);
    if (points.empty() && p2)
        line.points.push_back(*p2);
    if (mode.isEmpty())
        line.mode = line.points.size() == 1 ? Mode::Point : Mode::Crossing;
    else if (mode == u"W")
        line.mode = Mode::Window;
    else if (mode == u"C")
        line.mode = Mode::Crossing;
    else if (mode == u"F")
        line.mode = Mode::Fence;
    else if (mode == u"WP")
        line.mode = Mode::WindowPolygon;
    else if (mode == u"CP")
        line.mode = Mode::CrossingPolygon;
    else if (mode == u"L")
        line.mode = Mode::Last;
    else if (mode == u"P")
        line.mode = Mode::Previous;
    return line;
}

bool hasEnoughPoints(const KcEdSelectionLine& line)
{
    switch (line.mode) {
    case Mode::Window:
    case Mode::Crossing:
        return line.points.size() == 2;
    case Mode::Fence:
        return line.points.size() >= 2;
    case Mode::WindowPolygon:
    case Mode::CrossingPolygon:
        return line.points.size() >= 3;
    default:
        return true;
    }
}

/// The way over points, and back to the first where it is closed: what a fence or polygon looks like.
KcEdPreview pathPreview(const KcDbDatabase& database, std::vector<KcGePoint3d> points, bool closes)
{
    if (closes)
        points.push_back(points.front());
    KcEdPreview preview;
    const KcGeMatrix3d ucs = database.ucsToWorld();
    for (size_t i = 1; i < points.size(); ++i)
        preview.push_back(std::make_unique<KcDbLine>(ucs * points[i - 1], ucs * points[i]));
    return preview;
}

/// Asks for the points of a window, fence or polygon of which the word alone was typed. False: cancelled.
bool askPoints(const KcDbDatabase& database, KcEdSelectionLine& line)
{
    std::vector<KcGePoint3d>& points = line.points;
    KcGePoint3d point;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (line.mode == Mode::Window || line.mode == Mode::Crossing) {
        if (kcedGetPoint(nullptr, QStringLiteral("\nSpecify first corner: "), point) != kcedNormal)
            return false;
        points.push_back(point);
        kcedInitGet(KcEdPrompt::kNoEmpty);
        if (kcedGetCorner(points.front(), QStringLiteral("\nSpecify opposite corner: "), point) != kcedNormal)
            return false;
        points.push_back(point);
        return true;
    }
    if (kcedGetPoint(nullptr, QStringLiteral("\nSpecify first point: "), point) != kcedNormal)
        return false;
    for (;;) {
        points.push_back(point);
        const bool enough = hasEnoughPoints(line);
        kcedInitGet(enough ? 0 : KcEdPrompt::kNoEmpty);
        kcedInitPreview([&](KcGePoint3d cursor) {
            std::vector<KcGePoint3d> path = points;
            path.push_back(cursor);
            return pathPreview(database, path, line.mode != Mode::Fence);
        });
        const KcEdStatus status
            = kcedGetPoint(&points.back(), QStringLiteral("\nSpecify next point: "), point);
        if (status != kcedNormal)
            return status == kcedNone;
    }
}

} // namespace

double kcedPickBoxSize()
{
    const double pixels = kcedVarReal("PICKBOX", 3.0);
    // The box is PICKBOX pixels to each side of the cursor.
    return 2.0 * pixels * kcedPixelSize();
}

std::vector<KcDbObjectId> kcedEntitiesAt(KcGePoint3d point, const KcEdFilter& filter)
{
    return entitiesAt(point, KcEdCompiledFilter(filter));
}

KcDbObjectId kcedEntityAt(KcGePoint3d point, const KcEdFilter& filter)
{
    const Ids ids = kcedEntitiesAt(point, filter);
    return ids.empty() ? KcDbObjectId() : ids.front();
}

KcEdSelectionAnswer kcedSelect(const KcEdSelectionRequest& request)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const KcEdCompiledFilter filter(request.filter);
    if (!filter.error().isEmpty())
        kcedSay(filter.error());
    KcEdSelectionAnswer answer;
    if (!document || !filter.error().isEmpty())
        return answer;

    if (request.usePickFirst) {
        KcEdSelectionSet before = kcedCommandStack().takePickFirst();
        answer.set = KcEdSelectionSet(passing(before.ids(), filter));
        if (!answer.set.isEmpty()) {
            kcedSay(QStringLiteral("%1 found").arg(answer.set.size()));
            document->lastSelection = answer.set;
            answer.status = kcedNormal;
            return answer;
        }
    }

    KcEdPrompt prompt = request.prompt;
    prompt.kind = KcEdPrompt::Kind::Selection;
    prompt.under = [&](KcGePoint3d point) { return entitiesAt(point, filter); };
    bool removes = false;
    const auto take = [&](KcEdSelectionLine line) {
        line.removes |= removes;
        return apply(*document, line, filter, answer.set);
    };
    prompt.check = [&](const KcEdAnswer& typed) {
        const auto* line = std::get_if<KcEdSelectionLine>(&typed);
        return line && hasEnoughPoints(*line) ? take(*line) : QString();
    };
    KcEdMarks marks;
    for (;;) {
        KcEdAnswer typed = KcEdEditor::instance().ask(prompt);
        if (auto* line = std::get_if<KcEdSelectionLine>(&typed)) {
            if (line->mode == Mode::Add || line->mode == Mode::Remove) {
                removes = line->mode == Mode::Remove;
                prompt.text = removes ? QStringLiteral("\nRemove objects: ") : request.prompt.text;
            } else if (!hasEnoughPoints(*line)) {
                if (!askPoints(document->database(), *line))
                    return {};
                take(*line);
            }
            marks.show(answer.set.ids());
            continue;
        }
        if (const auto* keyword = std::get_if<KcEdKeyword>(&typed)) {
            answer.keyword = keyword->name;
            answer.status = kcedKeyword;
        } else if (const auto* text = std::get_if<QString>(&typed)) {
            answer.keyword = *text;
            answer.status = kcedKeyword;
        } else if (std::holds_alternative<KcEdEnter>(typed)) {
            answer.status = answer.set.isEmpty() ? kcedNone : kcedNormal;
        } else {
            answer.set.clear();
        }
        if (!answer.set.isEmpty())
            document->lastSelection = answer.set;
        return answer;
    }
}

KcEdEntityAnswer kcedSelectEntity(const KcEdEntityRequest& request)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const KcEdCompiledFilter filter(request.filter);
    if (!filter.error().isEmpty())
        kcedSay(filter.error());
    KcEdEntityAnswer answer;
    if (!document || !filter.error().isEmpty())
        return answer;

    const KcDbDatabase& database = document->database();
    KcEdPrompt prompt = request.prompt;
    prompt.kind = KcEdPrompt::Kind::Entity;
    // Where nothing lies that could be chosen, what does is named in the refusal.
    prompt.under = [&](KcGePoint3d point) {
        const Ids wanted = entitiesAt(point, filter);
        return wanted.empty() ? kcedEntitiesAt(point) : wanted;
    };
    prompt.check = [&](const KcEdAnswer& typed) -> QString {
        const auto* pick = std::get_if<KcEdPick>(&typed);
        if (!pick)
            return {};
        if (pick->handle != 0) {
            const Found found = entitiesByHandle(database, { pick->handle });
            if (!found.refusal.isEmpty())
                return found.refusal;
            answer.id = found.ids.front();
        } else {
            const Ids ids = prompt.under(*pick->point);
            if (ids.empty())
                return QStringLiteral("Nothing lies at that point.");
            answer.id = ids.front();
        }
        const KcDbRead<KcDbEntity> entity(answer.id);
        if (!filter.passes(*entity))
            return QStringLiteral("An object of this kind (%1) cannot be chosen here.")
                .arg(kcedEntityTypeName(*entity));
        answer.point = pick->point ? *pick->point : centerInUcs(database, answer.id);
        return {};
    };
    const KcEdAnswer typed = KcEdEditor::instance().ask(prompt);
    if (std::holds_alternative<KcEdPick>(typed)) {
        answer.status = kcedNormal;
    } else {
        answer.id = {};
        if (std::holds_alternative<KcEdEnter>(typed)) {
            answer.status = kcedNone;
        } else if (const auto* keyword = std::get_if<KcEdKeyword>(&typed)) {
            answer.keyword = keyword->name;
            answer.status = kcedKeyword;
        } else if (const auto* text = std::get_if<QString>(&typed)) {
            answer.keyword = *text;
            answer.status = kcedKeyword;
        }
    }
    return answer;
}

KcEdStatus kcedSSGet(
    const QString& mode, const KcGePoint3d* p1, const KcGePoint3d* p2, const KcEdFilter& filter,
    KcEdSelectionSet& set, const std::vector<KcGePoint3d>& points)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const KcEdCompiledFilter compiled(filter);
    const QString word = mode.toUpper();
    if (!compiled.error().isEmpty())
        kcedSay(compiled.error());
    if (!document || !compiled.error().isEmpty())
        return kcedCancel;

    if (word == u"_:S" || (word.isEmpty() && !p1 && points.empty())) {
        const bool once = word == u"_:S";
        if (once) {
            KcEdEntityRequest request;
            request.prompt
                = kcedPreparedPrompt(KcEdPrompt::Kind::Entity, QStringLiteral("\nSelect object: "));
            request.filter = filter;
            const KcEdEntityAnswer answer = kcedSelectEntity(request);
            if (answer.status == kcedNormal)
                set = KcEdSelectionSet({ answer.id });
            return answer.status;
        }
        KcEdSelectionRequest request;
        request.prompt
            = kcedPreparedPrompt(KcEdPrompt::Kind::Selection, QStringLiteral("\nSelect objects: "));
        request.filter = filter;
        KcEdSelectionAnswer answer = kcedSelect(request);
        if (answer.status == kcedNormal)
            set = std::move(answer.set);
        return answer.status;
    }

    Ids ids;
    if (word == u"A" || word == u"ALL") {
        ids = allOfSpace(document->database(), compiled);
    } else if (word == u"X") {
        ids = allOfLayouts(document->database(), compiled);
    } else if (word == u"I") {
        ids = passing(kcedCommandStack().takePickFirst().ids(), compiled);
    } else if (word == u"_:E") {
        if (!p1)
            return kcedCancel;
        ids = inRegion(document->database(), pickBox(document->database(), *p1), compiled);
    } else {
        const KcEdSelectionLine line = lineFor(word, p1, p2, points);
        const bool known = word.isEmpty() || line.mode != Mode::All;
        if (!known || !hasEnoughPoints(line))
            return kcedCancel;
        ids = evaluate(*document, line, compiled).ids;
    }
    set = KcEdSelectionSet(std::move(ids));
    return set.isEmpty() ? kcedNone : kcedNormal;
}

QString kcedSelectBeforeCommand(const KcEdSelectionLine& line)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document)
        return QStringLiteral("No drawing is open.");
    if (line.mode == KcEdSelectionLine::Mode::Add || line.mode == KcEdSelectionLine::Mode::Remove)
        return QStringLiteral("ADD and REMOVE stand at a prompt for objects.");
    KcEdSelectionLine whole = line;
    if (!hasEnoughPoints(whole) && !askPoints(document->database(), whole))
        return {};
    return apply(*document, whole, KcEdCompiledFilter({}), document->pickFirst);
}
