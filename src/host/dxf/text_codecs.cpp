// Codecs of texts, attributes and multiline texts.

#include "db/text.h"
#include "dxf/codec_tools.h"

namespace dxf {

namespace {

// Texts.

// The fields that texts, attributes and attribute definitions share, in the order in which programs write
// them.
std::vector<Field> textFields()
{
    using D = KcDbTextData;
    return { subclass("AcDbText"),
             field(39, &D::thickness).unless(0.0),
             field(10, &D::position),
             field(40, &D::height),
             field(1, &D::text),
             field(50, &D::rotation).angle().unless(0.0),
             field(41, &D::widthFactor).unless(1.0),
             field(51, &D::oblique).angle().unless(0.0),
             field(7, &D::style).name(NameOf::TextStyle).unlessText("Standard"),
             field(71, &D::generation).unless(0.0),
             field(72, &D::horizontal).unless(0.0) };
}

// The vertical justification stands behind another class mark, under a code that depends on the kind.
template <class T> bool readAlignment(T& text, const Group& group)
{
    KcGePoint3d& p = text.data().alignment;
    switch (group.code) {
    case 11:
        p.x = group.real();
        return true;
    case 21:
        p.y = group.real();
        return true;
    case 31:
        p.z = group.real();
        return true;
    default:
        return false;
    }
}

void writeAlignment(const KcDbTextData& d, GroupList& out)
{
    const bool isDefault = d.horizontal == 0 && d.vertical == 0 && d.alignment == KcGePoint3d{};
    out.point(11, d.alignment, isDefault);
    out.point(210, d.normal, d.normal == kZ);
}

template <class T> bool readOwn(T& attribute, const Group& group, ReadState& state)
{
    auto& own = attribute.attribute();
    switch (group.code) {
    case 2:
        own.tag = state.context.text(group);
        return true;
    case 70:
        own.flags = int(group.integer());
        return true;
    case 73:
        own.fieldLength = int(group.integer());
        return true;
    case 74:
        attribute.data().vertical = int(group.integer());
        return true;
    case 3:
        if constexpr (requires { own.prompt; }) {
            own.prompt = state.context.text(group);
            return true;
        }
        return false;
    default:
        return false;
    }
}
template <class Own> void writeOwn(const Own& own, GroupList& out)
{
    out.text(2, own.tag);
    out.integer(70, own.flags);
    out.integer(73, own.fieldLength, 0);
}

void registerTexts()
{
    using D = KcDbTextData;
    const std::vector<Field> text = textFields();
    std::vector<Field> readText = text;
    readText.push_back(field(73, &D::vertical));
    readText.push_back(field(210, &D::normal));

    class TextCodec : public Codec {
    public:
        TextCodec()
            : Codec("TEXT", KcDbText::desc())
            , m_write(textFields())
            , m_read([] {
                std::vector<Field> fields = textFields();
                fields.push_back(field(73, &D::vertical));
                fields.push_back(field(210, &D::normal));
                return fields;
            }())
        {
        }
        std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbText>(); }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            auto& text = static_cast<KcDbText&>(object);
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&text.data()) };
            return readAlignment(text, group) || m_read.read(parts, group, state.context);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const auto& text = static_cast<const KcDbText&>(object);
            const std::byte* const parts[1] = { reinterpret_cast<const std::byte*>(&text.data()) };
            m_write.write(parts, out);
            writeAlignment(text.data(), out);
            out.subclass("AcDbText");
            out.integer(73, text.data().vertical, 0);
        }

    private:
        FieldTable m_write, m_read;
    };
    registerCodec(std::make_unique<TextCodec>());

    // Attributes and their definitions: a text, then the attribute's own groups.
    class AttributeCodec : public Codec {
    public:
        explicit AttributeCodec(bool definition)
            : Codec(
                definition ? "ATTDEF" : "ATTRIB",
                definition ? KcDbAttributeDefinition::desc() : KcDbAttribute::desc())
            , m_definition(definition)
            , m_text([] {
                std::vector<Field> fields = textFields();
                fields.push_back(field(210, &D::normal));
                return fields;
            }())
            , m_write(textFields())
        {
        }
        std::unique_ptr<KcDbObject> create() const override
        {
            if (m_definition)
                return std::make_unique<KcDbAttributeDefinition>();
            return std::make_unique<KcDbAttribute>();
        }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            // A multiline attribute holds a whole multiline text behind its own groups: that stays as it is.
            if (state.subclass != "" && state.subclass != "AcDbText" && state.subclass != "AcDbAttribute"
                && state.subclass != "AcDbAttributeDefinition")
                return false;
            auto& text = static_cast<KcDbText&>(object);
            if (m_definition ? readOwn(static_cast<KcDbAttributeDefinition&>(object), group, state)
                             : readOwn(static_cast<KcDbAttribute&>(object), group, state))
                return true;
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&text.data()) };
            return readAlignment(text, group) || m_text.read(parts, group, state.context);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const auto& text = static_cast<const KcDbText&>(object);
            const std::byte* const parts[1] = { reinterpret_cast<const std::byte*>(&text.data()) };
            m_write.write(parts, out);
            writeAlignment(text.data(), out);
            if (m_definition) {
                const auto& own = static_cast<const KcDbAttributeDefinition&>(object).attribute();
                out.subclass("AcDbAttributeDefinition");
                out.text(3, own.prompt);
                writeOwn(own, out);
            } else {
                out.subclass("AcDbAttribute");
                writeOwn(static_cast<const KcDbAttribute&>(object).attribute(), out);
            }
            out.integer(74, text.data().vertical, 0);
        }

    private:
        bool m_definition;
        FieldTable m_text, m_write;
    };
    registerCodec(std::make_unique<AttributeCodec>(true));
    registerCodec(std::make_unique<AttributeCodec>(false));
}

bool readMText(KcDbMText& text, const Group& group, ReadState& state)
{
    KcDbMText::Data& d = text.data();
    switch (group.code) {
    case 3:
    case 1:
        d.contents += state.context.text(group);
        return true;
    case 11:
        d.hasDirection = true;
        d.direction.x = group.real();
        return true;
    case 21:
        d.direction.y = group.real();
        return true;
    case 31:
        d.direction.z = group.real();
        return true;
    case 50:
        // Of direction and rotation the later one holds.
        d.hasDirection = false;
        d.rotation = group.real() * (kPi / 180.0);
        return true;
    default:
        return false;
    }
}

// Data embedded by a later version, which repeat the place and hold the columns.
void readColumns(KcDbMText& text, const Group& group, ReadState& state)
{
    using Kind = KcDbMTextColumns::Kind;
    if (!state.own.has_value())
        state.own = KcDbMTextColumns();
    auto& columns = *std::any_cast<KcDbMTextColumns>(&state.own);
    switch (group.code) {
    case 42:
        columns.totalWidth = group.real();
        break;
    case 43:
        columns.totalHeight = group.real();
        break;
    case 44:
        columns.width = group.real();
        break;
    case 45:
        columns.gutter = group.real();
        break;
    case 46:
        columns.heights.push_back(group.real());
        break;
    case 71:
        columns.kind = group.integer() == 1 ? Kind::kStatic
            : group.integer() == 2          ? Kind::kDynamic
                                            : Kind::kNone;
        break;
    case 72:
        columns.count = int(std::clamp<int64_t>(group.integer(), 0, std::numeric_limits<int>::max()));
        break;
    case 73:
        columns.autoHeight = group.integer() != 0;
        break;
    case 74:
        columns.reversed = group.integer() != 0;
        break;
    case 41: // where the text itself leaves it out
        if (text.data().definedHeight == 0.0)
            text.data().definedHeight = group.real();
        break;
    default:
        break;
    }
}

void writeColumns(const KcDbMText& text, GroupList& out)
{
    const KcDbMText::Data& d = text.data();
    const KcDbMTextColumns& columns = *d.columns;
    out.text(101, QStringLiteral("Embedded Object"));
    out.integer(70, 1);
    out.point(10, d.hasDirection ? d.direction : text.textTransform().axis(0));
    out.point(11, d.location);
    out.real(40, d.width);
    out.real(41, d.definedHeight);
    out.real(42, columns.totalWidth > 0.0 ? columns.totalWidth : text.actualWidth());
    out.real(43, columns.totalHeight > 0.0 ? columns.totalHeight : text.actualHeight());
    out.integer(71, int(columns.kind));
    out.integer(72, columns.count);
    out.real(44, columns.width);
    out.real(45, columns.gutter);
    out.integer(73, columns.autoHeight);
    out.integer(74, columns.reversed);
    for (const double height : columns.heights)
        out.real(46, height);
}

void writeMText(const KcDbMText& text, GroupList& out)
{
    const KcDbMText::Data& d = text.data();
    out.subclass("AcDbMText");
    out.point(10, d.location);
    out.real(40, d.height);
    out.real(41, d.width);
    out.real(46, d.definedHeight, 0.0);
    out.integer(71, d.attachment);
    out.integer(72, d.flow);
    // Long contents are cut into pieces, none of them between the halves of a surrogate pair.
    constexpr qsizetype kPiece = 250;
    qsizetype at = 0;
    while (d.contents.size() - at > kPiece) {
        qsizetype length = kPiece;
        if (d.contents[at + length - 1].isHighSurrogate())
            --length;
        out.text(3, d.contents.mid(at, length));
        at += length;
    }
    out.text(1, d.contents.mid(at));
    const QString style = d.style.isNull() ? QStringLiteral("Standard") : kcdbRecordName(d.style);
    out.name(7, style, style.compare(QLatin1String("Standard"), Qt::CaseInsensitive) == 0);
    out.point(210, d.normal, d.normal == kZ);
    if (d.hasDirection)
        out.point(11, d.direction);
    out.real(42, d.actualWidth, 0.0);
    out.real(43, d.actualHeight, 0.0);
    if (!d.hasDirection)
        out.angle(50, d.rotation, 0.0);
    out.integer(73, d.lineSpacingStyle);
    out.real(44, d.lineSpacingFactor);
    if (out.version() >= KcDbVersion::V2004) {
        out.integer(90, d.fillMode, 0);
        if (d.fillMode != 0) {
            out.integer(63, d.fillColor);
            out.real(45, d.fillFactor);
        }
    }
}

void registerMText()
{
    using D = KcDbMText::Data;
    class MTextCodec : public FieldCodec<KcDbMText> {
    public:
        using FieldCodec::FieldCodec;
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            if (state.subclass == "Embedded Object") {
                readColumns(static_cast<KcDbMText&>(object), group, state);
                return true;
            }
            // Other later classes stand in data behind marks of their own.
            return (state.subclass == "" || state.subclass == "AcDbMText")
                && FieldCodec::read(object, group, state);
        }
        void finish(KcDbObject& object, ReadState& state) const override
        {
            if (auto* columns = std::any_cast<KcDbMTextColumns>(&state.own);
                columns && columns->kind != KcDbMTextColumns::Kind::kNone)
                static_cast<KcDbMText&>(object).data().columns
                    = std::make_shared<const KcDbMTextColumns>(std::move(*columns));
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const auto& text = static_cast<const KcDbMText&>(object);
            writeMText(text, out);
            if (text.data().columns && out.version() >= KcDbVersion::V2018)
                writeColumns(text, out);
        }
    };
    registerCodec(std::make_unique<MTextCodec>(
        "MTEXT",
        std::vector<Field>{ field(10, &D::location), field(40, &D::height), field(41, &D::width),
                            field(46, &D::definedHeight), field(71, &D::attachment), field(72, &D::flow),
                            field(7, &D::style).name(NameOf::TextStyle), field(210, &D::normal),
                            field(42, &D::actualWidth), field(43, &D::actualHeight),
                            field(73, &D::lineSpacingStyle), field(44, &D::lineSpacingFactor),
                            field(90, &D::fillMode), field(63, &D::fillColor), field(45, &D::fillFactor) },
        readMText));
}

} // namespace

void registerTextCodecs()
{
    registerTexts();
    registerMText();
}

} // namespace dxf
