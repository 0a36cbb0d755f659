// Looking up values by their group codes.
#pragma once

#include "db/typed_value.h"

/// The first value of each code in a list that outlives the view. What is missing or of another kind gives
/// `other`.
class KcDbGroupValues {
public:
    explicit KcDbGroupValues(const KcDbValueList& values)
        : m_values(values)
    {
    }
    const KcDbTypedValue* find(int code) const
    {
        for (const KcDbTypedValue& value : m_values)
            if (value.code == code)
                return &value;
        return nullptr;
    }
    double real(int code, double other = 0.0) const
    {
        const KcDbTypedValue* v = find(code);
        return v ? v->real(other) : other;
    }
    int64_t integer(int code, int64_t other = 0) const
    {
        const KcDbTypedValue* v = find(code);
        return v ? v->integer(other) : other;
    }
    KcGePoint3d point(int code, KcGePoint3d other = {}) const
    {
        const KcDbTypedValue* v = find(code);
        const auto* p = v ? std::get_if<KcGePoint3d>(&v->value) : nullptr;
        return p ? *p : other;
    }
    KcGeVector3d vector(int code, KcGeVector3d other) const
    {
        return find(code) ? point(code) - KcGePoint3d() : other;
    }
    KcDbObjectId id(int code) const
    {
        const KcDbTypedValue* v = find(code);
        return v ? v->id() : KcDbObjectId();
    }
    QString text(int code) const
    {
        const KcDbTypedValue* v = find(code);
        return v ? v->text() : QString();
    }

private:
    const KcDbValueList& m_values;
};
