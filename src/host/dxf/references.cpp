// References, gathered from the codecs and from the bytes of the file.

#include "dxf/references.h"

#include "dxf/codec.h"

namespace dxf {

namespace {

constexpr int kNameCodes[] = { 1, 2, 3, 6, 7, 8, 1003 };

bool mayName(int code)
{
    return std::find(std::begin(kNameCodes), std::end(kNameCodes), code) != std::end(kNameCodes);
}

} // namespace

References referencesOf(const KcDbObject& object)
{
    References result;
    const KcDbObjectId owner = object.ownerId();
    const auto add = [&](KcDbObjectId id) {
        if (id.isValid() && id != owner && id != object.objectId())
            result.ids.push_back(id);
    };
    if (object.isKindOf(KcDbEntity::desc())) {
        const auto& entity = static_cast<const KcDbEntity&>(object);
        add(entity.layerId());
        add(entity.linetypeId());
    }
    for (const KcDbXData& data : object.xdata()) {
        add(data.application);
        for (const KcDbTypedValue& value : data.values) {
            add(value.id());
            if (value.code == 1003)
                result.names.emplace_back(value.code, value.text());
        }
    }
    KcDbDatabase* database = object.database();
    if (const Codec* codec = codecFor(object)) {
        GroupList groups(KcDbVersion::V2018, GroupList::Defaults::kKeep);
        codec->write(object, groups);
        for (const OutGroup& group : groups.groups()) {
            if (const auto* handle = std::get_if<HandleValue>(&group.value); handle && database)
                add(database->findHandle(handle->handle));
            if (const auto* text = std::get_if<QString>(&group.value); text && mayName(group.code))
                result.names.emplace_back(group.code, *text);
        }
    }
    if (database && database->file())
        for (const KcDbTypedValue& value : database->file()->values(object)) {
            add(value.id());
            if (mayName(value.code))
                result.names.emplace_back(value.code, value.text());
        }
    return result;
}

} // namespace dxf
