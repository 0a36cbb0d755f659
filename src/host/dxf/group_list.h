// Groups on their way into a file: what a class writes of an object, before it takes the form of the file.
#pragma once

#include "db/database.h"
#include "db/typed_value.h"
#include "dxf/group.h"
#include "dxf/strings.h"

#include <string>
#include <variant>
#include <vector>

namespace dxf {

/// A handle as a value.
struct HandleValue {
    KcDbHandle handle = 0;
    friend bool operator==(HandleValue, HandleValue) = default;
};

struct OutGroup {
    int code = 0;
    std::variant<int64_t, double, QString, QByteArray, HandleValue> value;
    /// The value is what a reader assumes when the group is absent: it is left out unless the file had it.
    bool isDefault = false;
    /// A name of a record, compared without regard to case.
    bool isName = false;

    bool sameValue(const OutGroup& other) const;
};

class GroupList {
public:
    enum class Defaults { kOmit, kKeep };
    GroupList(KcDbVersion version, Defaults defaults)
        : m_version(version)
        , m_keepDefaults(defaults == Defaults::kKeep)
    {
    }

    KcDbVersion version() const { return m_version; }
    bool isR12() const { return m_version == KcDbVersion::R12; }
    const std::vector<OutGroup>& groups() const { return m_groups; }

    /// Class marks are no part of R12 files and left out there.
    void subclass(const char* name)
    {
        if (!isR12())
            text(100, QLatin1String(name));
    }
    void text(int code, const QString& value) { add({ code, value }); }
    void text(int code, const QString& value, const QString& otherwise)
    {
        add({ code, value, value == otherwise });
    }
    void name(int code, const QString& value, bool isDefault = false)
    {
        add({ code, value, isDefault, true });
    }
    void integer(int code, int64_t value) { add({ code, value }); }
    void integer(int code, int64_t value, int64_t otherwise) { add({ code, value, value == otherwise }); }
    void real(int code, double value) { add({ code, value }); }
    void real(int code, double value, double otherwise) { add({ code, value, value == otherwise }); }
    /// Angles are radians here and degrees in files.
    void angle(int code, double radians) { add({ code, degrees(radians) }); }
    void angle(int code, double radians, double otherwise)
    {
        add({ code, degrees(radians), radians == otherwise });
    }
    void handle(int code, KcDbHandle value) { add({ code, HandleValue{ value } }); }
    void handle(int code, KcDbObjectId id, bool isDefault = false)
    {
        add({ code, HandleValue{ id.handle() }, isDefault });
    }
    void bytes(int code, const QByteArray& value) { add({ code, value }); }
    void point(int code, KcGePoint3d p, bool isDefault = false)
    {
        add({ code, p.x, isDefault });
        add({ code + 10, p.y, isDefault });
        add({ code + 20, p.z, isDefault });
    }
    void point(int code, KcGeVector3d v, bool isDefault = false)
    {
        point(code, KcGePoint3d{ v.x, v.y, v.z }, isDefault);
    }
    void point(int code, KcGePoint2d p, bool isDefault = false)
    {
        add({ code, p.x, isDefault });
        add({ code + 10, p.y, isDefault });
    }
    /// A value of extended data or of an extension record.
    void typed(const KcDbTypedValue& value);
    void add(OutGroup group)
    {
        if (m_keepDefaults || !group.isDefault)
            m_groups.push_back(std::move(group));
    }

    static double degrees(double radians);

private:
    std::vector<OutGroup> m_groups;
    KcDbVersion m_version;
    bool m_keepDefaults;
};

/// The bytes of a group in the form and character set of a file.
void appendGroup(
    std::string& out, const OutGroup& group, Form form, const Strings& strings, const char* lineEnd);
/// The value as a text file holds it; reals in the fewest digits that read back the same.
std::string formatReal(double value);
/// A group of a file as a value to compare with.
OutGroup toOutGroup(const Group& group, Strings& strings);

} // namespace dxf
