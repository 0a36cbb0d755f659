// ZOOM, PAN, REGEN: what is shown. The drawing does not change.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/header.h"
#include "ed/documents.h"

using namespace hand;

namespace {

KcApDocument& document()
{
    return *kcDocManagerPtr()->curDocument();
}

void show(const KcEdView& view)
{
    if (!kcedSetView(document(), view))
        kcedSay(QStringLiteral("Nothing can be shown like that."));
}

void showBox(const KcGeExtents3d& box)
{
    if (const auto view = kcedViewOf(box))
        show(*view);
    else
        kcedSay(QStringLiteral("There is nothing to show."));
}

void showBetween(KcGePoint3d first, KcGePoint3d second)
{
    const KcGeMatrix3d toWorld = database().ucsToWorld();
    KcGeExtents3d box;
    for (const KcGePoint3d corner : { first, second, KcGePoint3d{ first.x, second.y, first.z },
                                      KcGePoint3d{ second.x, first.y, first.z } })
        box.addPoint(toWorld * corner);
    showBox(box);
}

void showWindow()
{
    KcGePoint3d first, second;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst corner: "), first) != kcedNormal)
        return;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetCorner(first, QStringLiteral("\nOpposite corner: "), second) == kcedNormal)
        showBetween(first, second);
}

/// Everything, and the limits of the drawing.
void showAll()
{
    KcGeExtents3d box = kcedVisibleExtents(database());
    const KcDbRead<KcDbHeader> header(database().headerId());
    if (header->find(QStringLiteral("$LIMMIN")) && header->find(QStringLiteral("$LIMMAX"))) {
        box.addPoint(header->point(QStringLiteral("$LIMMIN")));
        box.addPoint(header->point(QStringLiteral("$LIMMAX")));
    }
    showBox(box);
}

/// "2x" is twice as large as now; "2" as seen with the limits in the window; "0.01xp" is of use in layouts
/// only. False when the text is none of these.
bool showScaled(const QString& text)
{
    QString number = text.toLower();
    const bool relative = number.endsWith(u'x'), toPaper = number.endsWith(u"xp");
    number.chop(toPaper ? 2 : relative ? 1 : 0);
    const auto factor = kcedParseReal(number);
    if (!factor || *factor <= 0.0)
        return false;
    if (toPaper) {
        kcedSay(QStringLiteral("nXP is of use in the viewport of a layout only."));
        return true;
    }
    KcEdView view = kcedView(document());
    if (relative) {
        view.height /= *factor;
    } else {
        const KcDbRead<KcDbHeader> header(database().headerId());
        const double limits
            = header->point(QStringLiteral("$LIMMAX")).y - header->point(QStringLiteral("$LIMMIN")).y;
        view.height = (limits > 0.0 ? limits : view.height) / *factor;
    }
    show(view);
    return true;
}

void showCentre()
{
    KcEdView view = kcedView(document());
    KcGePoint3d center;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nCenter point: "), center) != kcedNormal)
        return;
    kcedInitGet(KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative);
    double height = view.height;
    if (kcedGetDist(&center, QStringLiteral("\nHeight of the view%1: ").arg(offered(height)), height)
        == kcedCancel)
        return;
    view.center = (database().ucsToWorld() * center).plan();
    view.height = height;
    show(view);
}

void showObjects()
{
    KcGeExtents3d box;
    const KcEdSelectionSet set = askSelection();
    for (const KcDbObjectId id : set.ids())
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            box.addExtents(entity->geomExtents());
    if (!box.isEmpty())
        showBox(box);
}

} // namespace

void hand::zoom()
{
    for (;;) {
        kcedInitGet(
            KcEdPrompt::kAnyText,
            QStringLiteral("All Center Extents Previous Scale Window Object _ "
                           "All Center Extents Previous Scale Window Object"));
        KcGePoint3d corner, opposite;
        const KcEdStatus status = kcedGetPoint(
            nullptr,
            QStringLiteral("\nCorner of window, scale (nX or nXP) or "
                           "[All/Center/Extents/Previous/Scale/Window/Object]: "),
            corner);
        if (status == kcedNormal) {
            kcedInitGet(KcEdPrompt::kNoEmpty);
            if (kcedGetCorner(corner, QStringLiteral("\nOpposite corner: "), opposite) == kcedNormal)
                showBetween(corner, opposite);
            return;
        }
        if (status != kcedKeyword)
            return;
        const QString keyword = kcedGetInput();
        if (keyword == u"All")
            return showAll();
        if (keyword == u"Center")
            return showCentre();
        if (keyword == u"Extents")
            return showBox(kcedVisibleExtents(database()));
        if (keyword == u"Window")
            return showWindow();
        if (keyword == u"Object")
            return showObjects();
        if (keyword == u"Previous") {
            if (!kcedPreviousView(document()))
                kcedSay(QStringLiteral("There is no view before this one."));
            return;
        }
        QString scale = keyword;
        if (keyword == u"Scale"
            && kcedGetString(false, QStringLiteral("\nScale factor (nX or nXP): "), scale) != kcedNormal)
            return;
        if (showScaled(scale))
            return;
        kcedSay(QStringLiteral("\"%1\" is no scale; one is 2, 0.5x or the like.").arg(scale));
    }
}

void hand::pan()
{
    KcGePoint3d base, second;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nBase point or displacement: "), base) != kcedNormal)
        return;
    const KcEdStatus status = kcedGetPoint(&base, QStringLiteral("\nSecond point: "), second);
    if (status == kcedCancel)
        return;
    const KcGeVector3d by
        = database().ucsToWorld() * (status == kcedNormal ? second - base : base.asVector());
    KcEdView view = kcedView(document());
    view.center = view.center - KcGeVector2d{ by.x, by.y };
    show(view);
}

void hand::regenerate()
{
    kcedRegenerate();
}
