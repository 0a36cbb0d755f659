// Values with group codes: the content of extended data and of extension records.
#pragma once

#include "db/object_id.h"
#include "ge/point.h"

#include <QByteArray>
#include <QString>

#include <variant>
#include <vector>

/// One value with the group code that tells its meaning. Integers of every width are 64 bits here; object references
/// (1005 in extended data, 320 to 369 and others in records) are ids.
struct KcDbTypedValue {
    using Value = std::variant<int64_t, double, KcGePoint3d, QString, QByteArray, KcDbObjectId>;

    int code = 0;
    Value value;

    QString text() const
    {
        const auto* t = std::get_if<QString>(&value);
        return t ? *t : QString();
    }
    KcDbObjectId id() const
    {
        const auto* i = std::get_if<KcDbObjectId>(&value);
        return i ? *i : KcDbObjectId();
    }
    int64_t integer(int64_t other = 0) const
    {
        const auto* i = std::get_if<int64_t>(&value);
        return i ? *i : other;
    }
    double real(double other = 0.0) const
    {
        const auto* d = std::get_if<double>(&value);
        return d ? *d : other;
    }
    friend bool operator==(const KcDbTypedValue&, const KcDbTypedValue&) = default;
};

using KcDbValueList = std::vector<KcDbTypedValue>;
