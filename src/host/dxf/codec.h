// Codecs: how each class of objects is read from groups and written to groups. A class with plain fields is a
// table of (group code, member); a class with sequences adds functions of its own.
#pragma once

#include "db/database.h"
#include "db/entity.h"
#include "db/symbol_table.h"
#include "dxf/group_list.h"
#include "ge/matrix.h"

#include <any>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <unordered_map>

namespace dxf {

/// The tables that names in groups refer to.
enum class NameOf : uint8_t { Layer, Linetype, TextStyle, DimStyle, Block, RegApp };

/// What reading needs apart from the groups: the drawing, the character set, names and handles resolved to
/// ids.
class ReadContext {
public:
    ReadContext(KcDbDatabase& database, Strings& strings, KcDbVersion version);

    KcDbDatabase& database;
    Strings& strings;
    KcDbVersion version;
    /// Texts that are columns of others, and how wide those are: told by the text of the first column.
    std::vector<std::pair<KcDbObjectId, double>> columnWidths;
    bool reportsFindings = true; ///< false while an object is read a second time for comparison

    QString text(const Group& group) { return strings.decode(group.text()); }
    /// The record of that name, made (as implicit) when the drawing does not define it. Null for an empty
    /// name.
    KcDbObjectId named(NameOf table, const Group& group);
    KcDbObjectId handle(const Group& group) { return database.idForHandle(group.handle()); }
    /// The value of extended data or of an extension record; points take their y and z from the groups that
    /// follow.
    KcDbTypedValue typed(const Group& group);
    void finding(int number, KcDbHandle object, const QString& text);

private:
    struct Names {
        std::string lastKey;
        KcDbObjectId last;
        std::unordered_map<std::string, KcDbObjectId> known; ///< by the bytes of the file
    };
    std::array<Names, 6> m_names;
};

/// The place inside the record that is being read.
struct ReadState {
    ReadContext& context;
    GroupCursor& cursor; ///< behind the current group; a codec may read on
    std::string_view subclass; ///< of the last class mark; empty in R12 files and before the first mark
    int subclassCount = 0; ///< class marks met so far
    KcDbHandle handle = 0; ///< of the object, for findings
    int step = 0, step2 = 0; ///< for codecs that count
    std::any own; ///< for codecs that need more
};

class Codec {
public:
    Codec(std::string fileName, const KcRxClass* type)
        : m_fileName(std::move(fileName))
        , m_type(type)
    {
    }
    virtual ~Codec() = default;

    /// The name of the kind in files.
    const std::string& fileName() const { return m_fileName; }
    const KcRxClass* type() const { return m_type; }
    virtual std::unique_ptr<KcDbObject> create() const = 0;
    /// Takes one group of the object's own classes (common groups of entities are read elsewhere). False when
    /// the class does not know the group: it stays in the file as it is.
    virtual bool read(KcDbObject& object, const Group& group, ReadState& state) const = 0;
    /// Called after the last group.
    virtual void finish(KcDbObject&, ReadState&) const { }
    /// Writes the groups of the object's own classes, each class behind its mark.
    virtual void write(const KcDbObject& object, GroupList& out) const = 0;

private:
    std::string m_fileName;
    const KcRxClass* m_type;
};

/// The codec for a kind of record; null when none knows it.
const Codec* codecNamed(std::string_view fileName);
/// The codec that writes objects of a class; null for raw objects.
const Codec* codecFor(const KcDbObject& object);
/// Adds a codec; called while the table of codecs is built.
void registerCodec(std::unique_ptr<Codec> codec);
/// Each source file of codecs has one function that registers its codecs; codecs.cpp calls them all.
void registerCurveCodecs();
void registerTextCodecs();
void registerReferenceCodecs();
void registerHatchCodec();
void registerTableRecordCodecs();
void registerObjectCodecs();
void registerTableCodecs();
void registerTableStyleCodecs();

// Tables of fields.

enum class FieldType : uint8_t {
    Subclass,
    Real,
    Angle,
    Point3,
    Point2,
    Int32,
    Int16,
    UInt32,
    Bool,
    Text,
    Handle,
    Name
};

struct Field {
    FieldType type = FieldType::Subclass;
    int code = 0;
    size_t offset = 0;
    uint8_t part = 0;
    NameOf table = NameOf::Layer;
    bool optional = false;
    double otherwise = 0.0; ///< the default of an optional number
    KcGePoint3d otherwisePoint;
    const char* text = ""; ///< the class of a mark; the default of an optional text
    KcDbVersion since = KcDbVersion::R12;

    /// Left out of new records when the value is this one.
    Field unless(double value) const
    {
        Field f = *this;
        f.optional = true;
        f.otherwise = type == FieldType::Angle ? value : value;
        return f;
    }
    Field unless(KcGePoint3d value) const
    {
        Field f = *this;
        f.optional = true;
        f.otherwisePoint = value;
        return f;
    }
    Field unless(KcGeVector3d value) const { return unless(KcGePoint3d{ value.x, value.y, value.z }); }
    Field unlessText(const char* value) const
    {
        Field f = *this;
        f.optional = true;
        f.text = value;
        return f;
    }
    /// A real that is degrees in the file and radians in memory.
    Field angle() const
    {
        Field f = *this;
        f.type = FieldType::Angle;
        return f;
    }
    /// An id that is a name in the file.
    Field name(NameOf of) const
    {
        Field f = *this;
        f.type = FieldType::Name;
        f.table = of;
        return f;
    }
    /// Member of the object's second set of values.
    Field inPart(int number) const
    {
        Field f = *this;
        f.part = uint8_t(number);
        return f;
    }
    Field sinceVersion(KcDbVersion version) const
    {
        Field f = *this;
        f.since = version;
        return f;
    }
};

/// The mark that begins the groups of a class.
inline Field subclass(const char* name)
{
    Field f;
    f.text = name;
    return f;
}

/// A member of a plain struct and its group code; the kind of value follows from the member's type.
template <class D, class M> Field field(int code, M D::*member)
{
    Field f;
    f.code = code;
    alignas(D) static std::byte room[sizeof(D)];
    const D* at = reinterpret_cast<const D*>(room);
    f.offset = size_t(reinterpret_cast<const std::byte*>(&(at->*member)) - room);
    if constexpr (std::is_same_v<M, double>)
        f.type = FieldType::Real;
    else if constexpr (std::is_same_v<M, int>)
        f.type = FieldType::Int32;
    else if constexpr (std::is_same_v<M, int16_t>)
        f.type = FieldType::Int16;
    else if constexpr (std::is_same_v<M, uint32_t>)
        f.type = FieldType::UInt32;
    else if constexpr (std::is_same_v<M, bool>)
        f.type = FieldType::Bool;
    else if constexpr (std::is_same_v<M, QString>)
        f.type = FieldType::Text;
    else if constexpr (std::is_same_v<M, KcDbObjectId>)
        f.type = FieldType::Handle;
    else if constexpr (std::is_same_v<M, KcGePoint2d> || std::is_same_v<M, KcGeVector2d>)
        f.type = FieldType::Point2;
    else {
        static_assert(std::is_same_v<M, KcGePoint3d> || std::is_same_v<M, KcGeVector3d>);
        f.type = FieldType::Point3;
    }
    return f;
}

/// Reads and writes by a table of fields.
class FieldTable {
public:
    FieldTable(std::vector<Field> fields);

    /// True when the group is in the table; `parts` are the sets of values that the fields' parts number.
    bool read(std::byte* const* parts, const Group& group, ReadContext& context) const
    {
        const unsigned code = unsigned(group.code);
        if (code >= m_index.size() || m_index[code].field == 0)
            return false;
        store(m_fields[m_index[code].field - 1], m_index[code].component, parts, group, context);
        return true;
    }
    void write(const std::byte* const* parts, GroupList& out) const;

private:
    static void
    store(const Field& f, int component, std::byte* const* parts, const Group& g, ReadContext& context);

    struct Slot {
        uint8_t field = 0; ///< one more than the index
        uint8_t component = 0;
    };
    std::vector<Field> m_fields;
    std::array<Slot, 512> m_index{};
};

/// Codec of a class whose values are one struct reached by `data()`, plus what the optional functions add.
template <class T> class FieldCodec : public Codec {
public:
    /// Takes groups before the table does; true when it took the group.
    using Read = std::function<bool(T&, const Group&, ReadState&)>;
    using Write = std::function<void(const T&, GroupList&)>;
    /// Whether `write` adds to the groups of the table, or writes all of them because sequences stand
    /// between.
    enum class Writes { kBehindTable, kInsteadOfTable };

    FieldCodec(
        std::string fileName, std::vector<Field> fields, Read read = {}, Write write = {},
        Writes writes = Writes::kBehindTable)
        : Codec(std::move(fileName), T::desc())
        , m_table(std::move(fields))
        , m_read(std::move(read))
        , m_write(std::move(write))
        , m_writes(writes)
    {
    }

    std::unique_ptr<KcDbObject> create() const override { return std::make_unique<T>(); }
    bool read(KcDbObject& object, const Group& group, ReadState& state) const override
    {
        T& t = static_cast<T&>(object);
        if (m_read && m_read(t, group, state))
            return true;
        std::byte* const parts[2] = { first(t), second(t) };
        return m_table.read(parts, group, state.context);
    }
    void write(const KcDbObject& object, GroupList& out) const override
    {
        T& t = const_cast<T&>(static_cast<const T&>(object));
        const std::byte* const parts[2] = { first(t), second(t) };
        if (m_writes == Writes::kBehindTable)
            m_table.write(parts, out);
        if (m_write)
            m_write(static_cast<const T&>(object), out);
    }

private:
    static std::byte* first(T& t)
    {
        if constexpr (requires { t.data(); })
            return reinterpret_cast<std::byte*>(&t.data());
        else
            return nullptr;
    }
    static std::byte* second(T& t)
    {
        if constexpr (requires { t.attribute(); })
            return reinterpret_cast<std::byte*>(&t.attribute());
        else
            return nullptr;
    }

    FieldTable m_table;
    Read m_read;
    Write m_write;
    Writes m_writes;
};

} // namespace dxf
