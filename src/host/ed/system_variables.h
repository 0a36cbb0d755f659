// System variables: some live in the drawing's header and are undone with it, some last as long as the
// program runs.
#pragma once

#include "db/typed_value.h"

#include <QStringList>

using KcEdVarValue = KcDbTypedValue::Value; // a whole number, a number, a point or a text

/// Height in pixels of the view that VIEWSIZE and PICKBOX refer to while there is no window.
inline constexpr double kcedScreenHeight = 800.0;

/// Names without regard to case.
bool kcedHasVar(const QString& name);
QStringList kcedVarNames();
/// Nothing for an unknown variable, and for one of the drawing when none is open.
std::optional<KcEdVarValue> kcedGetVar(const QString& name);
double kcedVarReal(const QString& name, double other);
int kcedVarInt(const QString& name, int other);
QString kcedVarText(const QString& name);
/// Sets a variable; a sentence when it is refused (unknown, read only, wrong type, out of range). A variable
/// of the drawing is set as part of the running undo step, or as a step of its own.
QString kcedSetVar(const QString& name, const KcEdVarValue& value);

/// Shows a variable and asks for a new value, as its name typed at the command line does.
void kcedAskVar(const QString& name);
/// As it is shown.
QString kcedVarAsText(const KcEdVarValue& value);

/// Sets a variable for the length of a scope.
class KcEdScopedVariable {
public:
    KcEdScopedVariable(const QString& name, const KcEdVarValue& value)
        : m_name(name)
        , m_before(kcedGetVar(name))
    {
        kcedSetVar(name, value);
    }
    ~KcEdScopedVariable()
    {
        if (m_before)
            kcedSetVar(m_name, *m_before);
    }
    KcEdScopedVariable(const KcEdScopedVariable&) = delete;
    KcEdScopedVariable& operator=(const KcEdScopedVariable&) = delete;

private:
    QString m_name;
    std::optional<KcEdVarValue> m_before;
};
