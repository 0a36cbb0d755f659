// Header variables of a drawing ("$CLAYER", "$LTSCALE", …), kept in the order of the file.
#pragma once

#include "db/object.h"

#include <unordered_map>

class KcDbHeader : public KcDbObject {
    KCRX_DECLARE(KcDbHeader)
public:
    struct Variable {
        QString name; ///< with the dollar sign
        KcDbValueList values; ///< points are one value
    };

    const std::vector<Variable>& variables() const { return m_variables; }
    /// Null when the drawing does not have it. Names are compared without regard to case.
    const Variable* find(const QString& name) const;
    double real(const QString& name, double other) const;
    int64_t integer(const QString& name, int64_t other) const;
    QString text(const QString& name) const;
    KcGePoint3d point(const QString& name, KcGePoint3d other = {}) const;

    /// Sets a variable of one value, adding it when it is new.
    void set(const QString& name, KcDbTypedValue value);
    /// For readers: appends a variable as the file holds it.
    void append(Variable variable);

private:
    std::vector<Variable> m_variables;
    std::unordered_map<std::string, size_t> m_index; ///< by upper-case name
};
