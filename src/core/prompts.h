// Asking the user, in the forms that the commands use. Everything here returns false when the user cancels;
// an empty answer leaves a preset value as it is. Points are in world coordinates.
#pragma once

#include "db/database.h"
#include "ed/selection.h"
#include "ed/system_variables.h"

/// Free text; blanks belong to it.
bool GetString(QString& text, const QString& prompt);
/// Free text or one of the keywords; `isKeyword` tells which, and `text` is then the keyword's global name.
bool GetString(QString& text, bool& isKeyword, const QString& keywords, const QString& prompt);

/// A whole number not below the limit. When a keyword is typed, `keyword` is its letters and the value is
/// untouched; it is empty otherwise.
bool GetInt(int& value, const QString& prompt, int lowerLimit, const QString& keywords, QString& keyword);
/// A number greater than the limit: -0.001 lets zero through.
bool GetDouble(
    double& value, const QString& prompt, double lowerLimit, const QString& keywords, QString& keyword);
bool GetDouble(double& value, const QString& prompt, double lowerLimit);
bool GetDouble(double& value, const QString& prompt);

/// A point; an empty answer counts as cancelling.
bool GetPoint(KcGePoint3d& point, const QString& prompt);
/// A point, a rubber band from `base` where one is given. An empty answer sets `isEmpty` and returns true.
bool GetPoint(KcGePoint3d& point, const QString& prompt, bool& isEmpty, const KcGePoint3d* base = nullptr);
/// A point; or a keyword, whose letters go to `text`; or an empty answer, which sets `isEnter`.
bool GetPointOrString(
    KcGePoint3d& point, QString& text, bool& isEnter, const QString& prompt, const QString& keywords);

/// One entity. With `acceptEmpty` an empty answer gives a null id and true.
bool GetEntity(
    KcDbObjectId& id, const QString& prompt, bool acceptEmpty = false, const KcEdFilter& filter = {});
/// One entity and the point at which it was picked.
bool GetEntityOnPoint(KcDbObjectId& id, KcGePoint3d& point, const KcEdFilter& filter, const QString& prompt);

/// Entities in the order of selecting. False also for an empty answer, which `isEmpty` tells apart from
/// cancelling.
bool GetSelection(
    std::vector<KcDbObjectId>& ids, const KcEdFilter& filter, const QString& prompt, bool* isEmpty = nullptr);
/// What a fence through the points crosses.
bool GetSelection(
    const std::vector<KcGePoint3d>& fence, std::vector<KcDbObjectId>& ids, const KcEdFilter& filter = {});
/// As the first, but an empty answer sets `isEmpty` and returns true; it usually means all.
bool GetSelectionAcceptEmpty(
    std::vector<KcDbObjectId>& ids, const KcEdFilter& filter, const QString& prompt, bool& isEmpty);
/// True: a selection was made. False: the letters of the keyword that was typed ("D" for "Dimension"), or an
/// empty keyword when the user cancelled or answered nothing. The selection made before the command is taken
/// at the first prompt only.
bool GetSelectionOrString(
    std::vector<KcDbObjectId>& ids, QString& keyword, const QString& prompt, const QString& keywords,
    const KcEdFilter& filter);
/// The same, but an empty answer sets `isEmpty` and returns true.
bool GetSelectionOrStringAcceptEmpty(
    std::vector<KcDbObjectId>& ids, QString& keyword, const QString& prompt, const QString& keywords,
    const KcEdFilter& filter, bool& isEmpty);

/// The entities of model space that pass, in drawing order, those on layers that are off or frozen left out.
/// False when there is none.
bool GetEntities(std::vector<KcDbObjectId>& ids, const KcEdFilter& filter);
/// The entities of model space of that published class ("AcDbBlockReference") or that name of the filter kind
/// ("INSERT"), in drawing order, whatever their layers. A null database is the current one.
bool GetEntitiesOfType(const QString& type, std::vector<KcDbObjectId>& ids, KcDbDatabase* database = nullptr);
/// The members of a selection set that can still be opened.
bool GetObjectIdArray(const KcEdSelectionSet& set, std::vector<KcDbObjectId>& ids);

/// Half the side of the pick box, in drawing units.
double GetPickBoxWcs();
/// False when there is no such variable, or it is of another type.
bool GetSystemVariable(const QString& name, int& value);
bool GetSystemVariable(const QString& name, double& value);
bool GetSystemVariable(const QString& name, QString& value);
bool GetSystemVariable(const QString& name, KcGePoint3d& value);
/// False when the variable refuses the value. `KcEdScopedVariable` sets one for the length of a scope.
bool SetSystemVariable(const QString& name, int value);
bool SetSystemVariable(const QString& name, double value);
bool SetSystemVariable(const QString& name, const QString& value);
