// Asking for values: the forms that commands use. Points are in the user coordinate system.
#pragma once

#include "db/object_id.h"
#include "ed/jig.h"

/// How a question ended.
enum KcEdStatus : int {
    kcedNormal = 5100, ///< there is a value
    kcedKeyword, ///< a keyword was typed; `kcedGetInput` gives it
    kcedNone, ///< Enter: an empty answer; the out value is untouched
    kcedCancel, ///< Escape, or nobody answers any more; the out value is untouched
};

/// Sets up the next question only: what it refuses (bits of `KcEdPrompt::Flag`: 1 an empty answer, 2 zero, 4
/// negative numbers, 128 takes any text) and its keywords, "local … _ global …".
void kcedInitGet(int flags, const QString& keywords = {});
/// For the next question for a point, distance or angle only: shows while it waits what would be there if the
/// user answered with the cursor at a point, user coordinates. What is given is as for `KcEdDrag::preview`.
void kcedInitPreview(std::function<KcEdPreview(KcGePoint3d cursor)> preview);
/// The keyword or text with which the last question was answered.
QString kcedGetInput();

/// A keyword, by its global name. A text that is none is refused.
KcEdStatus kcedGetKword(const QString& prompt, QString& keyword);
/// `base`, where given, is where a rubber band begins.
KcEdStatus kcedGetPoint(const KcGePoint3d* base, const QString& prompt, KcGePoint3d& point);
/// The corner opposite to `base` of a rectangle.
KcEdStatus kcedGetCorner(KcGePoint3d base, const QString& prompt, KcGePoint3d& corner);
/// A number, or two points whose distance it is; one point where a base is given.
KcEdStatus kcedGetDist(const KcGePoint3d* base, const QString& prompt, double& distance);
/// An angle in radians: degrees are typed; a point gives the direction from the base, or two points do.
KcEdStatus kcedGetAngle(const KcGePoint3d* base, const QString& prompt, double& angle);
KcEdStatus kcedGetReal(const QString& prompt, double& value);
KcEdStatus kcedGetInt(const QString& prompt, int& value);
/// A text; with `blanks` they belong to it, else they end it.
KcEdStatus kcedGetString(bool blanks, const QString& prompt, QString& text);

/// Tracking the cursor: a move or the click that ends it.
struct KcEdTrack {
    enum class Kind { Move, Click, Enter, Keyword, Cancel };
    Kind kind = Kind::Cancel;
    KcGePoint3d point; ///< of a move or click
    QString keyword;
};
KcEdTrack kcedGrRead(const QString& prompt = {});

/// One entity and where it was picked. Enter is `kcedNone`.
KcEdStatus kcedEntSel(const QString& prompt, KcDbObjectId& entity, KcGePoint3d& point);

/// The question that `kcedInitGet` prepared, for operations that ask by a prompt of their own; forgets it.
KcEdPrompt kcedPreparedPrompt(KcEdPrompt::Kind kind, const QString& text);
