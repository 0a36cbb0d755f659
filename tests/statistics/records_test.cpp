// The lists of the counting commands, their records and the block name order document.
#include "exchange/markup_document.h"
#include "statistics/block_name_order.h"
#include "statistics/records.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Counted {
    static inline int alive = 0;
    int value;
    explicit Counted(int v)
        : value(v)
    {
        ++alive;
    }
    ~Counted() { --alive; }
};

QString names(const auto& records)
{
    QString all;
    for (int i = 0; i < records.count(); ++i)
        all += records.at(i)->name;
    return all;
}

void fill(DList<CTreeData>& records, std::initializer_list<std::pair<const char*, int>> rows)
{
    static KcDbObjectStub stub;
    for (const auto& [name, count] : rows)
        records.append(
            new CTreeData{ QString::fromUtf8(name), KcDbObjectId(&stub), count, records.count() + 1, {} });
}

} // namespace

TEST(DList, OwnsItsElementsAndFollowsTheCursor)
{
    {
        DList<Counted> list;
        EXPECT_EQ(list.at(0), nullptr);
        EXPECT_FALSE(list.removeAtCursor());
        for (int i = 0; i < 10; ++i)
            list.append(new Counted(i));
        for (const int i : { 0, 9, 5, 4, 6, 1, 8, 2, 9, 0 })
            EXPECT_EQ(list.at(i)->value, i);
        EXPECT_EQ(list.at(-1), nullptr);
        EXPECT_EQ(list.at(10), nullptr);
        list.at(9);
        EXPECT_TRUE(list.removeAtCursor()); // the last: the cursor has nowhere to go
        EXPECT_FALSE(list.removeAtCursor());
        list.at(0);
        EXPECT_TRUE(list.removeAtCursor());
        EXPECT_TRUE(list.removeAtCursor()); // the one that followed
        EXPECT_EQ(list.count(), 7);
        EXPECT_EQ(Counted::alive, 7);
        for (int i = 6; i >= 0; --i)
            EXPECT_EQ(list.at(i)->value, i + 2);
        list.append(new Counted(99));
        EXPECT_FALSE(list.removeAtCursor()); // appending resets the cursor
        EXPECT_EQ(list.at(7)->value, 99);
    }
    EXPECT_EQ(Counted::alive, 0);
    Counted kept(1);
    DList<Counted>(false).append(&kept);
    EXPECT_EQ(Counted::alive, 1);
}

TEST(TList, HoldsValues)
{
    TList<QString> list;
    list.append(u"a"_qs);
    list.append(u"b"_qs);
    *list.at(0) = u"c"_qs;
    EXPECT_TRUE(list.removeAtCursor());
    EXPECT_EQ(*list.at(0), u"b"_qs);
    list.clear();
    EXPECT_EQ(list.at(0), nullptr);
}

TEST(Records, SortFindAndRemove)
{
    DList<CTreeData> trees;
    fill(trees, { { "a", 5 }, { "b", 2 }, { "c", 5 }, { "d", 1 } });
    sortByCount(trees);
    EXPECT_EQ(names(trees), u"dbac"_qs);
    EXPECT_EQ(trees.at(2)->order, 1);
    EXPECT_EQ(trees.findByName(u"c"_qs), trees.at(3));
    EXPECT_EQ(trees.findByName(u"C"_qs), nullptr);

    trees.at(0)->block = KcDbObjectId();
    trees.at(1)->count = 0;
    trees.at(3)->count = -1;
    removeEmptyRecords(trees);
    EXPECT_EQ(names(trees), u"a"_qs);

    DList<CAreaData> areas;
    for (const char* name : { "x", "b", "", "y", "a" })
        areas.append(new CAreaData{ QString::fromLatin1(name), 1.0, 1, 0, {} });
    sortByNames(areas, { u"a"_qs, u"b"_qs, u"a"_qs });
    EXPECT_EQ(names(areas), u"abxy"_qs);
    removeEmptyRecords(areas);
    EXPECT_EQ(areas.count(), 4);
}

TEST(BlockNameOrder, KeepsWhatElseTheDocumentHolds)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"VDLBlockNameOrder.xml"_qs);
    EXPECT_FALSE(readBlockNameOrder(path));
    EXPECT_FALSE(readBlockNameOrder(path).error.isEmpty());

    MarkupDocument document;
    document.SetDoc(u"<R "
                    u"note=\"1\"><Table><Name>x</Name><Item><BlockName>other</BlockName></Item></"
                    u"Table><Table><Item><ID>0</ID>"
                    "</Item><Name>块名顺序表</Name><Item><BlockName>a</BlockName></Item><!-- kept "
                    "--><Item><BlockName/></Item>"
                    "<Item><BlockName>b&amp;c</BlockName></Item></Table></R>"_qs);
    ASSERT_TRUE(document.Save(path));
    EXPECT_EQ(*readBlockNameOrder(path), (QStringList{ u"a"_qs, u"b&c"_qs }));

    const QStringList order{ u"香樟"_qs, u"A<1>"_qs, u"桂花"_qs };
    ASSERT_TRUE(writeBlockNameOrder(path, order).ok());
    EXPECT_EQ(*readBlockNameOrder(path), order);
    ASSERT_TRUE(document.Load(path));
    for (const QString& kept : { u"other"_qs, u"note=\"1\""_qs, u"<!-- kept -->"_qs, u"<ID>2</ID>"_qs })
        EXPECT_TRUE(document.GetDoc().contains(kept)) << document.GetDoc().toStdString();
    EXPECT_FALSE(document.GetDoc().contains(u"b&amp;c"_qs));

    const QString fresh = folder.filePath(u"New.xml"_qs);
    ASSERT_TRUE(writeBlockNameOrder(fresh, order).ok());
    EXPECT_EQ(*readBlockNameOrder(fresh), order);
    EXPECT_FALSE(writeBlockNameOrder(folder.filePath(u"no/such/folder.xml"_qs), order).ok());

    const QString shipped = QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis/Sys/VDLBlockNameOrder.xml");
    const auto names = readBlockNameOrder(shipped);
    ASSERT_TRUE(names) << names.error.toStdString();
    EXPECT_EQ(names->value(0), u"香樟"_qs);

    const QString ini = folder.filePath(u"VDLBlockNameOrder.ini"_qs);
    EXPECT_EQ(readIdWithExcel(ini), 0);
    EXPECT_TRUE(writeIdWithExcel(ini, 1));
    EXPECT_EQ(readIdWithExcel(ini), 1);
}
