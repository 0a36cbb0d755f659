// Selecting entities: prompts, the modes that need none, filters.
#pragma once

#include "ed/input.h"
#include "ed/selection_filter.h"
#include "ed/selection_set.h"

/// What a selection prompt asks for.
struct KcEdSelectionRequest {
    KcEdPrompt prompt; ///< text and keywords
    KcEdFilter filter;
    bool usePickFirst = true; ///< take the selection made before the command, when it is not used up
};
struct KcEdSelectionAnswer {
    KcEdStatus status = kcedCancel; ///< kcedNone: Enter, with nothing selected
    KcEdSelectionSet set; ///< in the order of selecting
    QString keyword;
};
/// Asks for a selection: lines add up until Enter ends it. A keyword ends it at once, with what was selected
/// so far.
KcEdSelectionAnswer kcedSelect(const KcEdSelectionRequest& request);

/// What a prompt for one entity asks for.
struct KcEdEntityRequest {
    KcEdPrompt prompt;
    KcEdFilter filter;
};
struct KcEdEntityAnswer {
    KcEdStatus status = kcedCancel;
    KcDbObjectId id;
    KcGePoint3d
        point; ///< where it was picked, user coordinates; the centre of its box when it was named by handle
    QString keyword;
};
KcEdEntityAnswer kcedSelectEntity(const KcEdEntityRequest& request);

/// Selects without keeping a prompt's conventions.
/// `mode`: "" asks the user ("\nSelect objects: "), or selects crossing when both corners are given; "A" or
/// "ALL" what is in the current space and not on a frozen or locked layer; "X" everything of the drawing's
/// layouts; "W", "C" with two corners; "F", "WP", "CP" with the points of `points`, else p1 and p2; "L" the
/// last entity; "P" the previous selection; "I" the selection made before the command; "_:S" asks once; "_:E"
/// what touches the pick box at p1; one point without a mode: the entity there. Points in user coordinates.
/// kcedNone when nothing was found.
KcEdStatus kcedSSGet(
    const QString& mode, const KcGePoint3d* p1, const KcGePoint3d* p2, const KcEdFilter& filter,
    KcEdSelectionSet& set, const std::vector<KcGePoint3d>& points = {});

/// Half the side of the pick box in drawing units, from PICKBOX and VIEWSIZE.
double kcedPickBoxSize();
/// What passes within half a pick box of a point in user coordinates: those whose lines do, then those whose
/// filled inside does, of each kind the last drawn first.
std::vector<KcDbObjectId> kcedEntitiesAt(KcGePoint3d point, const KcEdFilter& filter = {});
/// The first of them; null when there is none.
KcDbObjectId kcedEntityAt(KcGePoint3d point, const KcEdFilter& filter = {});

/// Executes a selection line typed while no command runs; a sentence when it is refused.
QString kcedSelectBeforeCommand(const KcEdSelectionLine& line);
