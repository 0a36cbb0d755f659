// What a database keeps of the file it was read from: the bytes, and where everything stands in them. Saving
// copies what nobody changed from here.
#pragma once

#include "db/database.h"
#include "db/header.h"
#include "dxf/group.h"
#include "dxf/strings.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace dxf {

class SourceFile : public KcDbDrawingFile {
public:
    /// Room for a file. Of a large one most of the time to read it is the system's making pages; large pages
    /// save that.
    class Room {
    public:
        explicit Room(size_t size);
        ~Room();
        Room(Room&& other) noexcept
            : m_bytes(std::exchange(other.m_bytes, nullptr))
        {
        }
        Room& operator=(Room&&) = delete;
        char* get() const { return m_bytes; }

    private:
        char* m_bytes;
    };
    SourceFile(Room bytes, size_t size);

    KcDbValueList values(const KcDbObject& object) const override;

    const char* begin() const { return m_bytes.get(); }
    const char* end() const { return m_bytes.get() + size; }
    std::string_view all() const { return { m_bytes.get(), size }; }
    std::string_view record(const KcDbSourcePlace& place) const
    {
        return all().substr(place.offset, place.length);
    }
    uint64_t offsetOf(const char* place) const { return uint64_t(place - begin()); }

    size_t size;
    Form form = Form::Text;
    KcDbVersion version = KcDbVersion::R12;
    std::unique_ptr<Strings> strings;
    const char* lineEnd = "\n";
    uint64_t changeCount = 0; ///< the database's, when it had been read

    struct Span {
        uint64_t begin = 0, end = 0;
        bool contains(uint64_t offset) const { return begin <= offset && offset < end; }
    };
    /// Sections by name, from the first group behind the section's name to the mark of its end.
    std::map<std::string, Span> sections;
    uint64_t endOfSections = 0; ///< where a section that the file lacks would be added
    /// Where records are added to a table, and entities to a block other than the current layouts'.
    std::unordered_map<const KcDbObjectStub*, uint64_t> tableEnds;
    std::unordered_map<const KcDbObjectStub*, Span> blocks;
    /// Where sub-objects are added to an entity that has some: before its end mark.
    std::unordered_map<const KcDbObjectStub*, uint64_t> sequenceEnds;

    struct Variable {
        KcDbHeader::Variable value;
        Span place;
    };
    std::vector<Variable> header;
    std::set<std::string> classes; ///< file names of the classes that the file declares
    /// Objects in the order in which they stand in the file.
    std::vector<KcDbObjectStub*> order;

private:
    Room m_bytes;
};

/// The name that a header gives its version, such as "AC1024"; nothing for a version that is not known.
std::optional<KcDbVersion> versionNamed(std::string_view acadver);
const char* versionName(KcDbVersion version);
/// "R12", "2010", …
QString versionText(KcDbVersion version);

} // namespace dxf
