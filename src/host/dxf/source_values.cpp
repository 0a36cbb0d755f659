// The groups of an object as values, read again from the bytes of its file.

#include "dxf/codec.h"
#include "dxf/source_file.h"

namespace dxf {

namespace {

/// True when the group is y or z of the point that the code before began; the point takes it.
bool joinsPoint(KcDbValueList& values, const Group& group)
{
    if (values.empty())
        return false;
    auto* point = std::get_if<KcGePoint3d>(&values.back().value);
    const int of = values.back().code;
    if (!point || (group.code != of + 10 && group.code != of + 20))
        return false;
    (group.code == of + 10 ? point->y : point->z) = group.real();
    return true;
}

} // namespace

KcDbValueList SourceFile::values(const KcDbObject& object) const
{
    KcDbValueList result;
    if (!object.sourcePlace().isRead() || !object.database())
        return result;
    ReadContext context(*object.database(), *strings, version);
    context.reportsFindings = false;
    const std::string_view bytes = record(object.sourcePlace());
    GroupCursor cursor(bytes.data(), bytes.data() + bytes.size(), form);
    Group group;
    try {
        while (cursor.next(group))
            if (!joinsPoint(result, group))
                result.push_back(context.typed(group));
    } catch (const FileError&) {
        // What was readable when the file was opened is the same now; a record that ends early ends here.
    }
    return result;
}

} // namespace dxf
