// Tables in drawing files. The groups of a table stand in a fixed order (head, overrides of
// the style, row heights, column widths, cells row by row) and mean different things in its parts, so that
// they are read in order.

#include "db/dictionary.h"
#include "db/table.h"
#include "db/tables.h"
#include "dxf/codec_tools.h"

namespace dxf {

namespace {

using Cell = KcDbTableCell;

constexpr int kTextChunk = 250; // characters of one group of a long text
constexpr int kMaxSize = 1 << 20; // more rows or columns than any table has

// Group codes by Cell::Edge: top, right, bottom, left.
constexpr int kEdgeColor[] = { 69, 65, 66, 68 };
constexpr int kEdgeWeight[] = { 279, 275, 276, 278 };
constexpr int kEdgeVisible[] = { 289, 285, 286, 288 };

// Bits of a cell's overrides (177, from 2007 on 91).
enum CellBit {
    kCellAlignment = 0x1,
    kCellFillNone = 0x2,
    kCellFillColor = 0x4,
    kCellContentColor = 0x8,
    kCellTextStyle = 0x10,
    kCellTextHeight = 0x20,
    kCellEdgeColor = 0x40, ///< of the top edge; the next bits are of the other edges
    kCellEdgeWeight = 0x400,
    kCellEdgeVisible = 0x4000,
};

// Bits of a table's overrides (93). Three bits in a row: title, header, data.
enum TableBit {
    kTitleSuppressed = 0x1,
    kHeaderSuppressed = 0x2,
    kFlow = 0x4,
    kHorizontalMargin = 0x8,
    kVerticalMargin = 0x10,
    kContentColors = 0x20,
    kFillNones = 0x100,
    kFillColors = 0x800,
    kAlignments = 0x4000,
    kTextStyles = 0x20000,
    kTextHeights = 0x100000,
};

/// The bit of one row type among three. The groups of several types come in the order data, title, header, by
/// which the types are numbered (seen with text heights in a drawing of 2000).
int bitOf(int first, int type)
{
    constexpr int kShift[] = { 2, 0, 1 };
    return first << kShift[type];
}

/// What the flags of a cell say about the values that it has.
struct CellFlags {
    int overrides = 0; ///< 177 or 91
    int edges = 0; ///< 172
};

CellFlags flagsOf(const KcDbTableLook& look, const std::array<KcDbGridOverride, 4>& edges)
{
    CellFlags flags;
    flags.overrides |= look.alignment ? kCellAlignment : 0;
    flags.overrides |= look.filled ? kCellFillNone : 0;
    flags.overrides |= look.backgroundColor ? kCellFillColor : 0;
    flags.overrides |= look.contentColor ? kCellContentColor : 0;
    flags.overrides |= look.textStyle ? kCellTextStyle : 0;
    flags.overrides |= look.textHeight ? kCellTextHeight : 0;
    for (int edge = 0; edge < 4; ++edge) {
        flags.overrides |= edges[edge].color ? kCellEdgeColor << edge : 0;
        flags.overrides |= edges[edge].lineWeight ? kCellEdgeWeight << edge : 0;
        flags.overrides |= edges[edge].visible ? kCellEdgeVisible << edge : 0;
        flags.edges |= edges[edge].isSet() ? 1 << edge : 0;
    }
    return flags;
}

/// What the table's flags (93) say about the values that it has.
int overridesOf(const KcDbTableData& data)
{
    int flags = 0;
    flags |= data.titleSuppressed ? kTitleSuppressed : 0;
    flags |= data.headerSuppressed ? kHeaderSuppressed : 0;
    flags |= data.upward ? kFlow : 0;
    flags |= data.horizontalMargin ? kHorizontalMargin : 0;
    flags |= data.verticalMargin ? kVerticalMargin : 0;
    for (int type = 0; type < 3; ++type) {
        const KcDbTableLook& look = data.rowLooks[type].look;
        flags |= look.contentColor ? bitOf(kContentColors, type) : 0;
        flags |= look.filled ? bitOf(kFillNones, type) : 0;
        flags |= look.backgroundColor ? bitOf(kFillColors, type) : 0;
        flags |= look.alignment ? bitOf(kAlignments, type) : 0;
        flags |= look.textStyle ? bitOf(kTextStyles, type) : 0;
        flags |= look.textHeight ? bitOf(kTextHeights, type) : 0;
    }
    return flags;
}

/// A group as a value. The coordinates of points stay single numbers, as the file has them.
KcDbTypedValue single(const Group& group, ReadContext& context)
{
    if (valueKind(group.code) == ValueKind::Real)
        return { group.code, group.real() };
    return context.typed(group);
}

// Reading.

class TableReader {
public:
    explicit TableReader(KcDbTable& table)
        : m_table(table)
        , m_data(table.tableForReading())
    {
    }

    void take(const Group& group, ReadState& state)
    {
        if (m_inValue)
            return takeValue(group, state);
        if (group.code == 171)
            return beginCell(group);
        if (m_cell)
            return takeCell(*m_cell, group, state);
        if (group.code == 141 || group.code == 142)
            return takeSize(group);
        if (m_inOverrides)
            return takeOverride(group, state);
        takeHead(group, state);
    }

    void finish(ReadState& state)
    {
        endCell();
        m_data.otherOverrides[0] = m_overrides ^ overridesOf(m_data);
        const int64_t announced = int64_t(m_rows) * m_columns, met = int64_t(m_index) + 1;
        if (met != announced) {
            state.context.finding(
                kFindingBadGroup, state.handle,
                QStringLiteral("The table says that it has %1 cells and holds %2.").arg(announced).arg(met));
            // Cells that the file does not hold are not made up, those that complete the last row apart.
            if (met < announced) {
                m_columns = int(std::min<int64_t>(m_columns, met));
                m_rows = m_columns ? int((met + m_columns - 1) / m_columns) : 0;
            }
        }
        if (m_rows == 0 || m_columns == 0)
            m_rows = m_columns = 0;
        m_data.rows.resize(size_t(m_rows));
        m_data.columns.resize(size_t(m_columns));
        m_data.cells.resize(m_data.rows.size() * m_data.columns.size());
        m_spans.resize(m_data.cells.size());
        if (!m_data.rows.empty())
            m_data.defaultRowHeight = m_data.rows.back().height;
        if (!m_data.columns.empty())
            m_data.defaultColumnWidth = m_data.columns.back().width;
        addMerges();
        m_table.setDirection(m_data.direction);
        if (!m_block.isNull())
            m_table.setBlockTableRecord(m_block);
    }

private:
    static int count(const Group& group)
    {
        const int64_t n = group.integer();
        return n < 0 || n > kMaxSize ? 0 : int(n);
    }

    void takeHead(const Group& group, ReadState& state)
    {
        switch (group.code) {
        case 342:
            m_data.style = state.context.handle(group);
            break;
        case 343:
            m_block = state.context.handle(group);
            break;
        case 11:
            m_data.direction.x = group.real();
            break;
        case 21:
            m_data.direction.y = group.real();
            break;
        case 31:
            m_data.direction.z = group.real();
            break;
        case 90:
            m_data.valueFlags = int(group.integer());
            break;
        case 91:
            m_rows = count(group);
            break;
        case 92:
            m_columns = count(group);
            break;
        case 93:
            m_overrides = int(group.integer());
            break;
        case 94:
        case 95:
        case 96:
            m_data.otherOverrides[group.code - 93] = int(group.integer());
            m_inOverrides = group.code == 96;
            break;
        case 280: // version of the form
            break;
        default:
            m_data.others.push_back(single(group, state.context));
        }
    }

    /// The looks of the row type that the next group of this kind is about; null when the flags announce
    /// none.
    KcDbTableLook* nextLook(int bit)
    {
        for (int type = 0; type < 3; ++type)
            if ((m_overrides & bitOf(bit, type)) && !(m_used & bitOf(bit, type))) {
                m_used |= bitOf(bit, type);
                return &m_data.rowLooks[type].look;
            }
        return nullptr;
    }

    void takeOverride(const Group& group, ReadState& state)
    {
        // With overridden borders 63 and 64 stand for colours of these too, in an order of which no drawing
        // is known: all groups of that kind stay as they are then.
        const bool borders = m_data.otherOverrides[1] | m_data.otherOverrides[2] | m_data.otherOverrides[3];
        KcDbTableLook* look = nullptr;
        switch (group.code) {
        case 280:
            m_data.titleSuppressed = group.integer() != 0;
            return;
        case 281:
            m_data.headerSuppressed = group.integer() != 0;
            return;
        case 70:
            m_data.upward = group.integer() == 1;
            return;
        case 40:
            m_data.horizontalMargin = group.real();
            return;
        case 41:
            m_data.verticalMargin = group.real();
            return;
        case 64:
            if (!borders && (look = nextLook(kContentColors))) {
                look->contentColor = indexColor(group);
                return;
            }
            break;
        case 63:
            if (!borders && (look = nextLook(kFillColors))) {
                look->backgroundColor = indexColor(group);
                return;
            }
            break;
        case 283:
            if ((look = nextLook(kFillNones))) {
                look->filled = group.integer() == 0;
                return;
            }
            break;
        case 170:
            if ((look = nextLook(kAlignments))) {
                look->alignment = int(group.integer());
                return;
            }
            break;
        case 7:
            if ((look = nextLook(kTextStyles))) {
                look->textStyle = state.context.named(NameOf::TextStyle, group);
                return;
            }
            break;
        case 140:
            if ((look = nextLook(kTextHeights))) {
                look->textHeight = group.real();
                return;
            }
            break;
        default:
            break;
        }
        m_data.others.push_back(single(group, state.context));
    }

    void takeSize(const Group& group)
    {
        if (group.code == 141 && int(m_data.rows.size()) < m_rows)
            m_data.rows.push_back({ group.real(), 0.0, {} });
        if (group.code == 142 && int(m_data.columns.size()) < m_columns)
            m_data.columns.push_back({ group.real(), {} });
    }

    /// Keeps what the flags of the cell say beyond, or contrary to, its groups, so that they can be written
    /// again.
    void endCell()
    {
        if (!m_cell)
            return;
        const CellFlags flags = flagsOf(m_cell->look, m_cell->edges);
        m_cell->otherOverrides ^= flags.overrides & m_bitsMask;
        m_cell->otherFlags ^= flags.edges;
    }

    void beginCell(const Group& group)
    {
        endCell();
        ++m_index;
        if (int64_t(m_index) >= int64_t(m_rows) * m_columns) {
            m_surplus = {}; // more cells than the table has room for
            m_cell = &m_surplus;
            return;
        }
        m_cell = &m_data.cells.emplace_back();
        m_spans.emplace_back();
        m_cell->type = group.integer() == 2 ? Cell::kBlock : Cell::kText;
    }

    bool takeEdge(Cell& cell, const Group& group)
    {
        for (int edge = 0; edge < 4; ++edge) {
            KcDbGridOverride& line = cell.edges[edge];
            if (group.code == kEdgeColor[edge])
                line.color = indexColor(group);
            else if (group.code == kEdgeWeight[edge])
                line.lineWeight = int(group.integer());
            else if (group.code == kEdgeVisible[edge])
                line.visible = group.integer() != 0;
            else
                continue;
            return true;
        }
        return false;
    }

    void takeCell(Cell& cell, const Group& group, ReadState& state)
    {
        if (takeEdge(cell, group))
            return;
        Span none;
        Span& span = &cell == &m_surplus ? none : m_spans.back();
        switch (group.code) {
        case 172:
            cell.otherFlags = int(group.integer());
            break;
        case 173:
            span.covered = group.integer() != 0;
            break;
        case 174:
            cell.autoFit = group.integer() != 0;
            break;
        case 175:
            span.columns = count(group);
            break;
        case 176:
            span.rows = count(group);
            break;
        case 177:
        case 91: {
            // Older programs write the low 16 bits only.
            const int bits = group.code == 177 ? int(group.integer()) & 0xffff : int(group.integer());
            cell.otherOverrides = bits;
            m_bitsMask = group.code == 177 ? 0xffff : ~0;
            // That an edge is visible after all is said by the bit alone.
            for (int edge = 0; edge < 4; ++edge)
                if (bits & (kCellEdgeVisible << edge))
                    cell.edges[edge].visible = true;
            break;
        }
        case 178:
            cell.virtualEdges = int(group.integer());
            break;
        case 145:
            cell.rotation = group.real();
            break;
        case 344:
            cell.field = state.context.handle(group);
            break;
        case 340:
            (cell.type == Cell::kBlock ? cell.block : cell.field) = state.context.handle(group);
            break;
        case 144:
            cell.blockScale = group.real();
            break;
        case 179: // the number of attributes, known from their groups
            break;
        case 331:
            cell.attributes.push_back({ state.context.handle(group), {} });
            break;
        case 300:
            if (!cell.attributes.empty())
                cell.attributes.back().text = state.context.text(group);
            break;
        case 7:
            cell.look.textStyle = state.context.named(NameOf::TextStyle, group);
            break;
        case 140:
            cell.look.textHeight = group.real();
            break;
        case 170:
            cell.look.alignment = int(group.integer());
            break;
        case 64:
            cell.look.contentColor = indexColor(group);
            break;
        case 63:
            cell.look.backgroundColor = indexColor(group);
            break;
        case 283: // "no background": the other way round than in table styles, as drawings with filled cells
                  // show
            cell.look.filled = group.integer() == 0;
            break;
        case 1:
        case 2:
        case 3:
            cell.text += state.context.text(group);
            break;
        case 92:
            cell.extendedFlags = int(group.integer());
            break;
        case 301:
            m_inValue = true;
            break;
        default:
            cell.others.push_back(single(group, state.context));
        }
    }

    void takeValue(const Group& group, ReadState& state)
    {
        if (group.code != 304) {
            m_cell->fileValue.push_back(single(group, state.context));
            return;
        }
        m_inValue = false;
        // What is shown is the formatted text; a value without one shows its own.
        QString own, formatted;
        for (const KcDbTypedValue& value : m_cell->fileValue) {
            if (value.code >= 1 && value.code <= 3)
                own += value.text();
            else if (value.code == 302 || value.code == 303)
                formatted += value.text();
        }
        m_cell->text = formatted.isEmpty() ? own : formatted;
    }

    void addMerges()
    {
        for (size_t i = 0; i < m_spans.size(); ++i) {
            const Span& span = m_spans[i];
            if (span.covered || (span.rows <= 1 && span.columns <= 1))
                continue;
            const int row = int(i) / m_columns, column = int(i) % m_columns;
            const KcDbCellRange range{ row, std::min(row + std::max(span.rows, 1), m_rows) - 1, column,
                                       std::min(column + std::max(span.columns, 1), m_columns) - 1 };
            const auto overlaps = [&](const KcDbCellRange& other) {
                return other.maxRow >= range.minRow && other.minRow <= range.maxRow
                    && other.maxColumn >= range.minColumn && other.minColumn <= range.maxColumn;
            };
            if ((range.minRow != range.maxRow || range.minColumn != range.maxColumn)
                && std::none_of(m_data.merges.begin(), m_data.merges.end(), overlaps))
                m_data.merges.push_back(range);
        }
    }

    struct Span {
        int rows = 1, columns = 1;
        bool covered = false;
    };

    KcDbTable& m_table;
    KcDbTableData& m_data;
    KcDbObjectId m_block;
    int m_rows = 0, m_columns = 0;
    int m_overrides = 0;
    int m_used = 0; ///< bits of the overrides whose groups were met
    bool m_inOverrides = false, m_inValue = false;
    int m_index = -1;
    int m_bitsMask = ~0; ///< the bits that the file has room for
    Cell* m_cell = nullptr; ///< valid until the next cell begins
    Cell m_surplus;
    std::vector<Span> m_spans;
};

// Writing.

void writeChunks(GroupList& out, int chunkCode, int lastCode, const QString& text)
{
    qsizetype at = 0;
    while (text.size() - at >= kTextChunk) {
        // A character outside the basic plane is two units that stay together.
        const qsizetype size = text[at + kTextChunk - 1].isHighSurrogate() ? kTextChunk - 1 : kTextChunk;
        out.text(chunkCode, text.mid(at, size));
        at += size;
    }
    out.text(lastCode, text.mid(at));
}

class TableWriter {
public:
    TableWriter(const KcDbTable& table, GroupList& out)
        : m_table(table)
        , m_data(table.table())
        , m_out(out)
        , m_hasValues(out.version() >= KcDbVersion::V2007)
    {
    }

    void write()
    {
        const KcDbBlockReference::Data& reference = m_table.data();
        m_out.subclass("AcDbBlockReference");
        m_out.name(2, kcdbRecordName(reference.block));
        m_out.point(10, reference.position);
        m_out.point(210, reference.normal, isWorldPlane(reference.normal));
        m_out.subclass("AcDbTable");
        if (m_out.version() >= KcDbVersion::V2010)
            m_out.integer(280, 0);
        m_out.handle(342, m_data.style);
        m_out.handle(343, reference.block);
        m_out.point(11, m_data.direction);
        m_out.integer(90, m_data.valueFlags);
        m_out.integer(91, m_table.numRows());
        m_out.integer(92, m_table.numColumns());
        writeOverrides();
        for (int row = 0; row < m_table.numRows(); ++row)
            m_out.real(141, m_table.rowHeight(row));
        for (int column = 0; column < m_table.numColumns(); ++column)
            m_out.real(142, m_table.columnWidth(column));
        for (int row = 0; row < m_table.numRows(); ++row)
            for (int column = 0; column < m_table.numColumns(); ++column)
                writeCell(row, column);
    }

private:
    template <class Value, class Write>
    void forLooks(std::optional<Value> KcDbTableLook::*member, Write write)
    {
        for (const KcDbTableData::RowLook& rows : m_data.rowLooks)
            if (const std::optional<Value>& value = rows.look.*member)
                write(*value);
    }

    void writeOverrides()
    {
        m_out.integer(93, overridesOf(m_data) ^ m_data.otherOverrides[0]);
        for (int i = 1; i < 4; ++i)
            m_out.integer(93 + i, m_data.otherOverrides[i]);
        if (m_data.titleSuppressed)
            m_out.integer(280, *m_data.titleSuppressed);
        if (m_data.headerSuppressed)
            m_out.integer(281, *m_data.headerSuppressed);
        if (m_data.upward)
            m_out.integer(70, *m_data.upward);
        if (m_data.horizontalMargin)
            m_out.real(40, *m_data.horizontalMargin);
        if (m_data.verticalMargin)
            m_out.real(41, *m_data.verticalMargin);
        forLooks(
            &KcDbTableLook::contentColor, [&](const KcCmColor& color) { m_out.integer(64, color.index); });
        forLooks(&KcDbTableLook::filled, [&](bool filled) { m_out.integer(283, !filled); });
        forLooks(
            &KcDbTableLook::backgroundColor, [&](const KcCmColor& color) { m_out.integer(63, color.index); });
        forLooks(&KcDbTableLook::alignment, [&](int alignment) { m_out.integer(170, alignment); });
        forLooks(&KcDbTableLook::textStyle, [&](KcDbObjectId style) { m_out.name(7, styleName(style)); });
        forLooks(&KcDbTableLook::textHeight, [&](double height) { m_out.real(140, height); });
        for (const KcDbTypedValue& value : m_data.others)
            m_out.typed(value);
    }

    /// The edges of a cell as far as the cell or the rows of its type say anything. What the rows say is said
    /// by each cell: the table's own groups for grid lines are not understood well enough to be written.
    std::array<KcDbGridOverride, 4> edgesOf(int row, int column) const
    {
        std::array<KcDbGridOverride, 4> edges = m_table.cell(row, column).edges;
        const auto& grid = m_data.rowLooks[KcDbTableStyle::indexOf(m_table.rowType(row))].grid;
        if (std::none_of(grid.begin(), grid.end(), [](const KcDbGridOverride& line) { return line.isSet(); }))
            return edges;
        for (int edge = 0; edge < 4; ++edge) {
            const KcDbGridLook look = m_table.gridLook(row, column, Cell::Edge(edge));
            edges[edge] = { look.color, look.lineWeight, look.visible };
        }
        return edges;
    }

    void writeCell(int row, int column)
    {
        const Cell& cell = m_table.cell(row, column);
        int minRow = row, maxRow = row, minColumn = column, maxColumn = column;
        m_table.isMergedCell(row, column, &minRow, &maxRow, &minColumn, &maxColumn);
        const bool covered = minRow != row || minColumn != column;
        const std::array<KcDbGridOverride, 4> edges = edgesOf(row, column);

        const CellFlags flags = flagsOf(cell.look, edges);
        const int bits = flags.overrides ^ cell.otherOverrides;

        m_out.integer(171, cell.type);
        m_out.integer(172, flags.edges ^ cell.otherFlags);
        m_out.integer(173, covered);
        m_out.integer(174, cell.autoFit);
        m_out.integer(175, covered ? 1 : maxColumn - minColumn + 1);
        m_out.integer(176, covered ? 1 : maxRow - minRow + 1);
        if (m_hasValues)
            m_out.integer(91, bits);
        else
            m_out.integer(177, int16_t(bits)); // has room for the low 16 bits
        m_out.integer(178, cell.virtualEdges);
        m_out.real(145, cell.rotation);
        if (!cell.field.isNull())
            m_out.handle(344, cell.field);
        if (cell.type == Cell::kBlock) {
            m_out.handle(340, cell.block);
            m_out.real(144, cell.blockScale);
            m_out.integer(179, int64_t(cell.attributes.size()));
            for (const Cell::Attribute& attribute : cell.attributes) {
                m_out.handle(331, attribute.definition);
                m_out.text(300, attribute.text);
            }
        } else if (!m_hasValues) {
            writeChunks(m_out, 2, 1, cell.text);
        }
        writeLook(cell.look, edges);
        for (const KcDbTypedValue& value : cell.others)
            m_out.typed(value);
        if (!m_hasValues)
            return;
        m_out.integer(92, cell.extendedFlags);
        m_out.text(301, QStringLiteral("CELL_VALUE"));
        if (cell.fileValue.empty())
            writeValue(cell);
        for (const KcDbTypedValue& value : cell.fileValue)
            m_out.typed(value);
        m_out.text(304, QStringLiteral("ACVALUE_END"));
    }

    void writeLook(const KcDbTableLook& look, const std::array<KcDbGridOverride, 4>& edges)
    {
        if (look.textStyle)
            m_out.name(7, styleName(*look.textStyle));
        if (look.alignment)
            m_out.integer(170, *look.alignment);
        if (look.backgroundColor)
            m_out.integer(63, look.backgroundColor->index);
        if (look.contentColor)
            m_out.integer(64, look.contentColor->index);
        if (look.filled)
            m_out.integer(283, !*look.filled);
        if (look.textHeight)
            m_out.real(140, *look.textHeight);
        for (const Cell::Edge edge : { Cell::kRight, Cell::kBottom, Cell::kLeft, Cell::kTop }) {
            const KcDbGridOverride& line = edges[edge];
            if (line.lineWeight)
                m_out.integer(kEdgeWeight[edge], *line.lineWeight);
            if (line.visible && !*line.visible)
                m_out.integer(kEdgeVisible[edge], 0);
            if (line.color)
                m_out.integer(kEdgeColor[edge], line.color->index);
        }
    }

    /// A value of type 4 (text), or of no type for an empty cell.
    void writeValue(const Cell& cell)
    {
        const bool empty = cell.type == Cell::kBlock || cell.text.isEmpty();
        m_out.integer(93, empty ? 3 : 2);
        m_out.integer(90, empty ? 0 : 4);
        if (empty)
            m_out.integer(91, 0);
        else
            writeChunks(m_out, 2, 1, cell.text);
        m_out.integer(94, 0);
        m_out.text(300, {});
        writeChunks(m_out, 303, 302, empty ? QString() : cell.text);
    }

    const KcDbTable& m_table;
    const KcDbTableData& m_data;
    GroupList& m_out;
    bool m_hasValues; ///< from 2007 on texts are values
};

class TableCodec : public Codec {
public:
    TableCodec()
        : Codec("ACAD_TABLE", KcDbTable::desc())
    {
    }
    std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbTable>(); }

    bool read(KcDbObject& object, const Group& group, ReadState& state) const override
    {
        KcDbTable& table = static_cast<KcDbTable&>(object);
        if (group.code == 100)
            return true;
        if (state.subclass == "AcDbTable") {
            if (!state.own.has_value())
                state.own = std::make_shared<TableReader>(table);
            std::any_cast<std::shared_ptr<TableReader>&>(state.own)->take(group, state);
            return true;
        }
        KcDbBlockReference::Data& data = table.data();
        switch (group.code) {
        case 2:
            data.block = state.context.named(NameOf::Block, group);
            return true;
        case 10:
            data.position.x = group.real();
            return true;
        case 20:
            data.position.y = group.real();
            return true;
        case 30:
            data.position.z = group.real();
            return true;
        case 210:
            data.normal.x = group.real();
            return true;
        case 220:
            data.normal.y = group.real();
            return true;
        case 230:
            data.normal.z = group.real();
            return true;
        default:
            return false;
        }
    }

    void finish(KcDbObject&, ReadState& state) const override
    {
        if (state.own.has_value())
            std::any_cast<std::shared_ptr<TableReader>&>(state.own)->finish(state);
    }

    void write(const KcDbObject& object, GroupList& out) const override
    {
        TableWriter(static_cast<const KcDbTable&>(object), out).write();
    }
};

} // namespace

void registerTableCodecs()
{
    registerCodec(std::make_unique<TableCodec>());
}

} // namespace dxf
