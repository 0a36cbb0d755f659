// Binary drawings of R12 have group codes of one byte. The test turns a text drawing into one with a
// converter of its own and opens, changes and saves it.

#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/open.h"
#include "dxf/drawing_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>

namespace {

template <class T> void append(std::string& out, T value)
{
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

std::string toBinaryR12(std::istream& text)
{
    std::string out("XxxxXXX Binary DXF\r\n\x1a\0", 22); // of the signature only the second part is looked at
    std::string codeLine, value;
    while (std::getline(text, codeLine) && std::getline(text, value)) {
        while (!value.empty() && value.back() == '\r')
            value.pop_back();
        const int code = std::stoi(codeLine);
        if (code > 254) {
            out.push_back(char(255));
            append(out, uint16_t(code));
        } else {
            out.push_back(char(code));
        }
        if ((code >= 10 && code <= 59) || (code >= 140 && code <= 147) || (code >= 210 && code <= 239)
            || (code >= 1010 && code <= 1059))
            append(out, std::stod(value));
        else if ((code >= 60 && code <= 79) || (code >= 170 && code <= 178) || (code >= 1060 && code <= 1070))
            append(out, int16_t(std::stoi(value)));
        else if (code == 1071)
            append(out, int32_t(std::stol(value)));
        else
            out.append(value).push_back('\0');
    }
    return out;
}

struct Census {
    size_t entities = 0;
    KcGeExtents3d box;
};

Census censusOf(const KcDbDatabase& database)
{
    Census census;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database.modelSpace())) {
        const KcDbRead<KcDbEntity> entity(id);
        census.box.addExtents(entity->geomExtents());
        ++census.entities;
    }
    return census;
}

} // namespace

TEST(BinaryR12, IsTheSameDrawingAndStaysBinary)
{
    for (const char* name : { "pavilion-r12.dxf", "all-sorts-r12.dxf" }) {
        SCOPED_TRACE(name);
        const std::string path = std::string(VERDELIS_TEST_DATA) + "/drawings/" + name;
        std::ifstream file(path);
        const std::string bytes = toBinaryR12(file);
        KcDbDatabase text(KcDbDatabase::Content::kEmpty), binary(KcDbDatabase::Content::kEmpty);
        ASSERT_TRUE(dxf::readDrawing(QString::fromStdString(path), text).ok);
        const dxf::Result read = dxf::readDrawing(bytes, binary);
        ASSERT_TRUE(read.ok) << read.error.toStdString();
        const Census a = censusOf(text), b = censusOf(binary);
        EXPECT_GE(a.entities, 7u);
        EXPECT_EQ(a.entities, b.entities);
        EXPECT_EQ(a.box.min, b.box.min);
        EXPECT_EQ(a.box.max, b.box.max);

        std::string saved;
        ASSERT_TRUE(dxf::saveDrawing(binary, saved).ok);
        EXPECT_TRUE(saved == bytes) << "an unchanged drawing is saved as it was read";

        auto line = std::make_unique<KcDbLine>(KcGePoint3d{ 1, 2, 3 }, KcGePoint3d{ 1e6, 5, 6 });
        line->setDatabaseDefaults(binary);
        KcDbRead<KcDbBlockTableRecord>(binary.modelSpace())->appendEntity(std::move(line));
        ASSERT_TRUE(dxf::saveDrawing(binary, saved).ok);
        EXPECT_EQ(saved.substr(0, 22), bytes.substr(0, 22));
        KcDbDatabase again(KcDbDatabase::Content::kEmpty);
        const dxf::Result reread = dxf::readDrawing(saved, again);
        ASSERT_TRUE(reread.ok) << reread.error.toStdString();
        EXPECT_EQ(censusOf(again).entities, a.entities + 1);
        EXPECT_EQ(again.version(), KcDbVersion::R12);
    }
}
