// Drawings made in memory: another program reads them without a fault, and finds the values that were put in.
#include "support.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/hatch.h"
#include "db/polyline.h"
#include "db/table.h"
#include "db/tables.h"
#include "db/wipeout.h"

using namespace drawing_test;

namespace {

// Prints one line per entity of model space, as ezdxf sees it.
const char kLister[] = R"(
import sys
try:
    import ezdxf
except ImportError:
    sys.exit(77)
document = ezdxf.readfile(sys.argv[1])
for e in document.modelspace():
    kind, d = e.dxftype(), e.dxf
    if kind == 'LINE': values = (*d.start, *d.end)
    elif kind == 'CIRCLE': values = (*d.center, d.radius)
    elif kind == 'LWPOLYLINE': values = [round(v, 9) for p in e.get_points('xyb') for v in p] + [e.closed]
    elif kind == 'TEXT': values = (d.text, d.height)
    elif kind == 'MTEXT': values = (e.text, d.char_height)
    elif kind == 'INSERT': values = (d.name, *d.insert, d.rotation, [a.dxf.text for a in e.attribs])
    elif kind == 'HATCH':
        values = [d.pattern_name, [type(p).__name__[:4] for p in e.paths], d.associative]
        if e.pattern: values += [round(e.pattern.lines[0].angle, 6), e.pattern.lines[0].dash_length_items]
        if e.has_gradient_data: values += [e.gradient.name, e.gradient.color2, round(e.gradient.rotation, 6)]
        if e.has_xdata('ACAD'): values += [tuple(e.get_xdata('ACAD')[0].value)[:2]]
        sources = [h for p in e.paths for h in p.source_boundary_objects]
        values += [[document.entitydb[h].reactors.get() == [d.handle] for h in sources]]
    elif kind == 'WIPEOUT': values = [len(e.boundary_path), document.rootdict['ACAD_WIPEOUT_VARS'].dxf.frame]
    else:
        print(kind)
        continue
    print(kind, d.layer, *values)
)";

std::unique_ptr<KcDbDatabase> makeDrawing()
{
    auto drawing = std::make_unique<KcDbDatabase>();
    {
        auto layer = std::make_unique<KcDbLayerTableRecord>();
        layer->initName(QStringLiteral("绿化-乔木"));
        layer->setColor(3);
        KcDbWrite<KcDbSymbolTable>(drawing->layerTable())->add(std::move(layer));
    }
    KcDbObjectId block;
    {
        auto record = std::make_unique<KcDbBlockTableRecord>();
        record->initName(QStringLiteral("香樟-D10"));
        block = KcDbWrite<KcDbSymbolTable>(drawing->blockTable())->add(std::move(record));
    }
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 1.0));

    const KcDbRead<KcDbBlockTableRecord> space(drawing->modelSpace());
    const auto add = [&](auto entity) {
        entity->setLayer(QStringLiteral("绿化-乔木"), drawing.get());
        return space->appendEntity(std::move(entity));
    };
    add(std::make_unique<KcDbLine>(KcGePoint3d{ 1, 2, 0 }, KcGePoint3d{ 3, 4.5, 0 }));
    add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 6, 0 }, 2.5));
    auto bed = std::make_unique<KcDbPolyline>();
    bed->data().vertices = { { 0, 0, 0.5 }, { 10, 0, 0 }, { 10, 10, -0.25 } };
    bed->data().flags = 1;
    add(std::move(bed));
    auto text = std::make_unique<KcDbText>();
    text->data().height = 3.0;
    text->data().text = QStringLiteral("银杏 7株");
    add(std::move(text));
    auto paragraph = std::make_unique<KcDbMText>();
    paragraph->data().height = 2.0;
    paragraph->setContents(QStringLiteral("一行\\P二行"));
    add(std::move(paragraph));
    const KcDbObjectId symbol = add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100, 200, 0 }, block));
    {
        KcDbWrite<KcDbBlockReference> reference(symbol);
        reference->setRotation(3.14159265358979323846 / 2);
        auto number = std::make_unique<KcDbAttribute>();
        number->data().text = QStringLiteral("12");
        number->data().height = 1.0;
        number->attribute().tag = QStringLiteral("NO");
        reference->appendAttribute(std::move(number));
        reference->setXData(QStringLiteral("VDL_TEST"), { { 1000, QStringLiteral("标记") }, { 1040, 1.5 } });
    }
    const KcDbObjectId round = add(std::make_unique<KcDbCircle>(KcGePoint3d{ 4, 4, 0 }, 1.5));
    auto hatch = std::make_unique<KcDbHatch>();
    hatch->setAssociative(true);
    hatch->setPattern(KcDbHatch::kCustomDefined, QStringLiteral("草坪"));
    hatch->data().lines = { { 0.5, { 1, 2 }, { -1, 3 }, { 2, -1, 0, -1 } } };
    hatch->setOriginPoint({ 7, 8 }, drawing.get());
    hatch->appendLoop(KcDbHatch::kExternal, { { 0, 0 }, { 10, 0 }, { 10, 10 } }, { 0.5, 0, -0.25 });
    hatch->appendLoop(KcDbHatch::kDefault, { round });
    KcDbWrite<KcDbHatch>(add(std::move(hatch)))->watchSources();
    auto gradient = std::make_unique<KcDbHatch>();
    gradient->setPattern(KcDbHatch::kPreDefined, QStringLiteral("SOLID"));
    gradient->appendLoop(KcDbHatch::kExternal, { { 20, 0 }, { 30, 0 }, { 30, 10 } });
    gradient->data().gradient = { true, true, 0, 0.25, 0.0, false, 0.0,
                                  { { 0.0, 5, 0x0000ff }, { 1.0, 2, 0xffff00 } }, QStringLiteral("CYLINDER") };
    add(std::move(gradient));
    add(KcDbWipeout::fromCorners({ { 0, 0, 0 }, { 4, 0, 0 }, { 4, 3, 0 } }));
    kcdbSetWipeoutFrame(*drawing, 0);
    auto table = std::make_unique<KcDbTable>();
    table->setSize(3, 2);
    table->setRowHeight(8.0);
    table->setColumnWidth(40.0);
    table->setTextString(0, 0, QStringLiteral("苗木表"));
    KcDbTable::append(drawing->modelSpace(), std::move(table));
    return drawing;
}

} // namespace

TEST(NewDrawings, AreSoundForOtherPrograms)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("new.dxf"), empty = folder.filePath("empty.dxf");
    {
        KcDbDatabase nothing;
        ASSERT_TRUE(dxf::saveDrawing(nothing, empty).ok);
        const auto drawing = makeDrawing();
        const dxf::Result saved = dxf::saveDrawing(*drawing, path);
        ASSERT_TRUE(saved.ok) << saved.error.toStdString();
        EXPECT_TRUE(saved.notes.isEmpty());
    }
    for (const QString& file : { empty, path }) {
        const Verdict found = judge("audit_drawing.py", { file });
        if (found.status == kNotChecked)
            GTEST_SKIP() << found.says.toStdString();
        EXPECT_TRUE(found.says.contains(": 0 errors") && found.says.contains(": 0 fixes"))
            << found.says.toStdString();
    }

    QProcess lister;
    lister.start(kPython, { "-c", kLister, path });
    ASSERT_TRUE(lister.waitForFinished(60000));
    EXPECT_EQ(lister.exitCode(), 0) << lister.readAllStandardError().toStdString();
    EXPECT_EQ(
        QString::fromUtf8(lister.readAllStandardOutput()).trimmed().toStdString(),
        "LINE 绿化-乔木 1.0 2.0 0.0 3.0 4.5 0.0\n"
        "CIRCLE 绿化-乔木 5.0 6.0 0.0 2.5\n"
        "LWPOLYLINE 绿化-乔木 0.0 0.0 0.5 10.0 0.0 0.0 10.0 10.0 -0.25 True\n"
        "TEXT 绿化-乔木 银杏 7株 3.0\n"
        "MTEXT 绿化-乔木 一行\\P二行 2.0\n"
        "INSERT 绿化-乔木 香樟-D10 100.0 200.0 0.0 90.0 ['12']\n"
        "CIRCLE 绿化-乔木 4.0 4.0 0.0 1.5\n"
        "HATCH 绿化-乔木 草坪 ['Poly', 'Edge'] 1 28.64789 [2.0, -1.0, 0.0, -1.0] (7.0, 8.0) [True]\n"
        "HATCH 绿化-乔木 SOLID ['Poly'] 0 CYLINDER (255, 255, 0) 14.323945 []\n"
        "WIPEOUT 绿化-乔木 4 0\n"
        "ACAD_TABLE");
}

// What was made and saved is, once read, a drawing like any other: saved again it is the same bytes.
TEST(NewDrawings, AreReadAsTheyWereMade)
{
    const auto drawing = makeDrawing();
    const std::string bytes = saveDrawing(*drawing);
    const auto again = readDrawing(bytes);
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->findings().empty());
    EXPECT_TRUE(saveDrawing(*again) == bytes);
    size_t references = 0;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(again->modelSpace()))
        if (const KcDbRead<KcDbBlockReference> symbol(id);
            symbol && symbol->isA() == KcDbBlockReference::desc()) {
            ++references;
            EXPECT_EQ(symbol->attributeValue(QStringLiteral("no")), QStringLiteral("12"));
            ASSERT_TRUE(symbol->xdataOf(QStringLiteral("VDL_TEST")));
            EXPECT_EQ(symbol->xdataOf(QStringLiteral("VDL_TEST"))->at(0).text(), QStringLiteral("标记"));
        }
    EXPECT_EQ(references, 1u);
}
