// Records: one object in a file, from its name to the next one's. The parts that all objects share (handle,
// owner, reactors, extension dictionary, common properties of entities, names of table records, extended
// data) are read and written here, the rest by the codecs.
#pragma once

#include "dxf/codec.h"

namespace dxf {

struct RecordHead {
    KcDbHandle handle = 0;
    KcDbHandle owner = 0;
    QString recordName; ///< of a symbol table record
    bool attributesFollow = false; ///< group 66
};

/// Reads the groups of one record behind its name, up to the next group 0, into the object.
RecordHead readRecord(GroupCursor& cursor, ReadContext& context, const Codec* codec, KcDbObject& object);

/// Makes the object for a record: of the codec's class, or one that keeps what nobody knows.
std::unique_ptr<KcDbObject> makeObject(const Codec* codec, std::string_view fileName, bool isEntity);

/// Writes a whole record. `handle` 0 leaves the handle out; `owner` 0 is written as such, and left out in R12
/// files.
void writeRecord(
    const KcDbObject& object, std::string_view fileName, const Codec* codec, KcDbHandle handle,
    KcDbHandle owner, GroupList& out);

/// The name under which an object is written.
std::string fileNameOf(const KcDbObject& object);

} // namespace dxf
