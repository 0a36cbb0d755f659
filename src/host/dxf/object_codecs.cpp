// Codecs of dictionaries, extension records, groups and layouts.

#include "db/dictionary.h"
#include "db/draw_order.h"
#include "db/open.h"
#include "db/wipeout.h"
#include "dxf/codec.h"
#include "dxf/written.h"

namespace dxf {

namespace {

class DictionaryCodec : public Codec {
public:
    explicit DictionaryCodec(const char* name)
        : Codec(name, KcDbDictionary::desc())
    {
    }
    std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbDictionary>(); }
    bool read(KcDbObject& object, const Group& group, ReadState& state) const override
    {
        KcDbDictionary::Data& d = static_cast<KcDbDictionary&>(object).data();
        switch (group.code) {
        case 3:
            d.entries.push_back({ state.context.text(group), {} });
            return true;
        case 350:
        case 360:
            if (d.entries.empty())
                return false;
            d.entries.back().id = state.context.handle(group);
            return true;
        case 280:
            d.hardOwner = group.integer() != 0;
            return true;
        case 281:
            d.cloning = int(group.integer());
            return true;
        case 340:
            d.defaultId = state.context.handle(group);
            return true;
        default:
            return false;
        }
    }
    void write(const KcDbObject& object, GroupList& out) const override
    {
        const KcDbDictionary::Data& d = static_cast<const KcDbDictionary&>(object).data();
        out.subclass("AcDbDictionary");
        out.integer(280, d.hardOwner, 0);
        out.integer(281, d.cloning);
        for (const KcDbDictionary::Entry& entry : d.entries) {
            // Entries of objects that were never born stay: the file has them.
            if (!isWrittenReference(object, entry.id))
                continue;
            out.text(3, entry.name);
            out.handle(d.hardOwner ? 360 : 350, entry.id);
        }
        if (!d.defaultId.isNull()) {
            out.subclass("AcDbDictionaryWithDefault");
            out.handle(340, d.defaultId);
        }
    }
};

class XrecordCodec : public Codec {
public:
    XrecordCodec()
        : Codec("XRECORD", KcDbXrecord::desc())
    {
    }
    std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbXrecord>(); }
    bool read(KcDbObject& object, const Group& group, ReadState& state) const override
    {
        KcDbXrecord::Data& d = static_cast<KcDbXrecord&>(object).data();
        if (group.code == 280 && state.step == 0) {
            d.cloning = int(group.integer());
            state.step = 1;
            return true;
        }
        state.step = 1;
        // The y and z of a point follow its x under codes that are 10 and 20 higher.
        if (!d.values.empty()) {
            if (auto* p = std::get_if<KcGePoint3d>(&d.values.back().value)) {
                if (group.code == d.values.back().code + 10) {
                    p->y = group.real();
                    return true;
                }
                if (group.code == d.values.back().code + 20) {
                    p->z = group.real();
                    return true;
                }
            }
        }
        d.values.push_back(state.context.typed(group));
        return true;
    }
    void write(const KcDbObject& object, GroupList& out) const override
    {
        const auto& record = static_cast<const KcDbXrecord&>(object);
        out.subclass("AcDbXrecord");
        out.integer(280, record.data().cloning);
        for (const KcDbTypedValue& value : record.values())
            out.typed(value);
    }
};

} // namespace

void registerObjectCodecs()
{
    registerCodec(std::make_unique<FieldCodec<KcDbWipeoutVariables>>(
        "WIPEOUTVARIABLES",
        std::vector<Field>{ subclass("AcDbWipeoutVariables"),
                            field(70, &KcDbWipeoutVariables::Data::frame) }));
    registerCodec(std::make_unique<FieldCodec<KcDbSortentsTable>>(
        "SORTENTSTABLE", std::vector<Field>{ subclass("AcDbSortentsTable") },
        [](KcDbSortentsTable& table, const Group& group, ReadState& state) {
            KcDbSortentsTable::Data& d = table.data();
            if (group.code == 330 && d.block.isNull())
                d.block = state.context.handle(group);
            else if (group.code == 331)
                d.entries.push_back({ state.context.handle(group), 0 });
            else if (group.code == 5 && !d.entries.empty())
                d.entries.back().place = group.handle();
            else
                return false;
            return true;
        },
        [](const KcDbSortentsTable& table, GroupList& out) {
            out.handle(330, table.data().block);
            for (const KcDbSortentsTable::Entry& entry : table.data().entries) {
                if (!isWrittenReference(table, entry.entity))
                    continue;
                out.handle(331, entry.entity);
                out.handle(5, entry.place);
            }
        }));
    registerCodec(std::make_unique<DictionaryCodec>("DICTIONARY"));
    registerCodec(std::make_unique<DictionaryCodec>("ACDBDICTIONARYWDFLT"));
    registerCodec(std::make_unique<XrecordCodec>());
    {
        using D = KcDbGroup::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbGroup>>(
            "GROUP",
            std::vector<Field>{ subclass("AcDbGroup"), field(300, &D::description), field(70, &D::anonymous),
                                field(71, &D::selectable) },
            [](KcDbGroup& group, const Group& g, ReadState& state) {
                if (g.code != 340)
                    return false;
                group.data().members.push_back(state.context.handle(g));
                return true;
            },
            [](const KcDbGroup& group, GroupList& out) {
                for (KcDbObjectId id : group.data().members)
                    if (isWrittenReference(group, id))
                        out.handle(340, id);
            }));
    }
    {
        using D = KcDbLayout::Data;
        class LayoutCodec : public FieldCodec<KcDbLayout> {
        public:
            using FieldCodec::FieldCodec;
            bool read(KcDbObject& object, const Group& group, ReadState& state) const override
            {
                auto& layout = static_cast<KcDbLayout&>(object);
                if (state.subclass == "AcDbPlotSettings") {
                    if (group.code == 70)
                        layout.data().plotFlags = int(group.integer());
                    else
                        readPage(layout.data().page, group);
                    return group.code == 70;
                }
                return FieldCodec::read(object, group, state);
            }
            static void readPage(KcDbLayout::Page& page, const Group& group)
            {
                using Page = KcDbLayout::Page;
                static constexpr std::pair<int, double Page::*> kReals[]
                    = { { 40, &Page::left },        { 41, &Page::bottom },       { 42, &Page::right },
                        { 43, &Page::top },         { 44, &Page::width },        { 45, &Page::height },
                        { 142, &Page::paperUnits }, { 143, &Page::drawingUnits } };
                static constexpr std::pair<int, int Page::*> kIntegers[]
                    = { { 72, &Page::unit }, { 73, &Page::rotation }, { 74, &Page::area } };
                for (const auto& [code, member] : kReals)
                    if (code == group.code)
                        page.*member = group.real();
                for (const auto& [code, member] : kIntegers)
                    if (code == group.code)
                        page.*member = int(group.integer());
                if (group.code == 46)
                    page.origin.x = group.real();
                else if (group.code == 47)
                    page.origin.y = group.real();
            }
            void write(const KcDbObject& object, GroupList& out) const override
            {
                const KcDbLayout::Data& d = static_cast<const KcDbLayout&>(object).data();
                out.subclass("AcDbPlotSettings");
                out.text(1, {}, {});
                out.integer(70, d.plotFlags);
                out.subclass("AcDbLayout");
                out.text(1, d.name);
                out.integer(70, d.flags);
                out.integer(71, d.tabOrder);
                out.point(10, d.limitsMin);
                out.point(11, d.limitsMax);
                out.handle(330, d.block);
            }
        };
        registerCodec(std::make_unique<LayoutCodec>(
            "LAYOUT",
            std::vector<Field>{ field(1, &D::name), field(70, &D::flags), field(71, &D::tabOrder),
                                field(10, &D::limitsMin), field(11, &D::limitsMax) },
            [](KcDbLayout& layout, const Group& group, ReadState& state) {
                // Behind the block come the last active viewport and named systems under the same code.
                if (group.code != 330 || state.step++ > 0)
                    return false;
                layout.data().block = state.context.handle(group);
                return true;
            }));
    }
}

} // namespace dxf
