// Table styles in drawing files.

#include "db/table_style.h"
#include "dxf/codec_tools.h"

namespace dxf {

namespace {

// Table styles: a head, then three runs of groups (data, title, header), each beginning with its text style.
class TableStyleCodec : public Codec {
public:
    TableStyleCodec()
        : Codec("TABLESTYLE", KcDbTableStyle::desc())
    {
    }
    std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbTableStyle>(); }

    bool read(KcDbObject& object, const Group& group, ReadState& state) const override
    {
        KcDbTableStyle::Data& data = static_cast<KcDbTableStyle&>(object).data();
        if (group.code == 100)
            return true;
        if (group.code == 7)
            ++state.step; // the run, counted from 1
        if (state.step == 0)
            return readHead(data, group, state);
        return state.step <= 3 && readRow(data.rows[state.step - 1], group, state);
    }

    void write(const KcDbObject& object, GroupList& out) const override
    {
        const KcDbTableStyle::Data& data = static_cast<const KcDbTableStyle&>(object).data();
        out.subclass("AcDbTableStyle");
        if (out.version() >= KcDbVersion::V2010)
            out.integer(280, 0);
        out.text(3, data.name);
        out.integer(70, data.upward);
        out.integer(71, data.flags);
        out.real(40, data.horizontalMargin);
        out.real(41, data.verticalMargin);
        out.integer(280, data.titleSuppressed);
        out.integer(281, data.headerSuppressed);
        for (const KcDbTableStyle::RowFormat& row : data.rows) {
            out.name(7, styleName(row.textStyle));
            out.real(140, row.textHeight);
            out.integer(170, row.alignment);
            out.integer(62, row.textColor.index);
            out.integer(63, row.fillColor.index);
            out.integer(283, row.filled);
            if (out.version() >= KcDbVersion::V2007) {
                out.integer(90, row.dataType);
                out.integer(91, row.unitType);
                out.text(1, row.valueFormat);
            }
            for (int i = 0; i < 6; ++i) {
                out.integer(274 + i, row.grid[i].lineWeight);
                out.integer(284 + i, row.grid[i].visible);
                out.integer(64 + i, row.grid[i].color.index);
            }
        }
    }

private:
    static bool readHead(KcDbTableStyle::Data& data, const Group& group, ReadState& state)
    {
        switch (group.code) {
        case 280: // first the version of the form, then the title
            if (state.step2 != 0)
                data.titleSuppressed = group.integer() != 0;
            return true;
        case 3:
            state.step2 = 1;
            data.name = state.context.text(group);
            return true;
        case 70:
            data.upward = group.integer() == 1;
            return true;
        case 71:
            data.flags = int(group.integer());
            return true;
        case 40:
            data.horizontalMargin = group.real();
            return true;
        case 41:
            data.verticalMargin = group.real();
            return true;
        case 281:
            data.headerSuppressed = group.integer() != 0;
            return true;
        default:
            return false;
        }
    }

    static bool readRow(KcDbTableStyle::RowFormat& row, const Group& group, ReadState& state)
    {
        if (group.code >= 274 && group.code <= 279) {
            row.grid[group.code - 274].lineWeight = int(group.integer());
            return true;
        }
        if (group.code >= 284 && group.code <= 289) {
            row.grid[group.code - 284].visible = group.integer() != 0;
            return true;
        }
        if (group.code >= 64 && group.code <= 69) {
            row.grid[group.code - 64].color = indexColor(group);
            return true;
        }
        switch (group.code) {
        case 7:
            row.textStyle = state.context.named(NameOf::TextStyle, group);
            return true;
        case 140:
            row.textHeight = group.real();
            return true;
        case 170:
            row.alignment = int(group.integer());
            return true;
        case 62:
            row.textColor = indexColor(group);
            return true;
        case 63:
            row.fillColor = indexColor(group);
            return true;
        case 283:
            row.filled = group.integer() != 0;
            return true;
        case 90:
            row.dataType = int(group.integer());
            return true;
        case 91:
            row.unitType = int(group.integer());
            return true;
        case 1:
            row.valueFormat = state.context.text(group);
            return true;
        default:
            return false;
        }
    }
};

} // namespace

void registerTableStyleCodecs()
{
    registerCodec(std::make_unique<TableStyleCodec>());
}

} // namespace dxf
