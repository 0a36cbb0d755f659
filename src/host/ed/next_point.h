// What the user says about the next point before he gives it: the object snaps that count for it, or the
// direction in which it lies.
#pragma once

#include "ed/object_snap.h"
#include "ed/prompt.h"

/// So near to a point of the drawing, in pixels, the cursor is drawn to it.
constexpr double kcedSnapPixels = 10.0;

struct KcEdNextPoint {
    std::optional<int> snaps; ///< bits of `KcEdSnapMode`, in the place of OSMODE's; 0: none draws
    std::optional<double> angle; ///< from the X axis of the user coordinate system, radians
};
/// Forgotten when the prompt has its answer; a move of the cursor is none.
KcEdNextPoint& kcedNextPoint();

/// Takes a line that says something about the next point: "end", "mid,cen", "non", and "<45" where the prompt
/// has a base. False when it says nothing of the kind, or the prompt takes no point.
bool kcedSayNextPoint(const KcEdPrompt& prompt, const QString& line);

/// What the cursor is drawn to at a prompt: by what was said for the next point, else by OSMODE.
/// @param world the cursor, world coordinates
/// @param aperture how far it may be off, drawing units
std::optional<KcEdSnap> kcedSnapFor(const KcEdPrompt& prompt, KcGePoint3d world, double aperture);
/// The nearest point of the line through the base that was said; the point itself where none was. User
/// coordinates.
KcGePoint3d kcedOnSaidLine(const KcEdPrompt& prompt, KcGePoint3d point);

/// What a point means after something was said, typed or clicked, user coordinates; a refusal when there is
/// nothing to snap to.
std::variant<KcGePoint3d, KcEdRefusal> kcedSaidPoint(const KcEdPrompt& prompt, KcGePoint3d point);
/// The point that a typed distance means: from the base along the line that was said, else towards the
/// cursor. Nothing when the text is no number, or the prompt has no base, or no direction is known. User
/// coordinates.
std::optional<KcGePoint3d>
kcedPointAtDistance(const KcEdPrompt& prompt, const QString& text, std::optional<KcGePoint3d> cursor);
