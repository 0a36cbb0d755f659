// Small pieces that several files of codecs share.
#pragma once

#include "db/symbol_table.h"
#include "dxf/codec.h"

namespace dxf {

inline constexpr KcGeVector3d kZ = KcGeVector3d::kZAxis;

/// Registers the codec of a class by its table of fields.
template <class T, class... Args> void add(const char* name, Args&&... args)
{
    registerCodec(std::make_unique<FieldCodec<T>>(name, std::forward<Args>(args)...));
}

/// y (1) or z (2) of the point whose x was read last.
inline bool setComponent(KcGePoint3d& point, int component, const Group& group)
{
    (component == 1 ? point.y : point.z) = group.real();
    return true;
}

/// A colour where the form knows index colours only.
inline KcCmColor indexColor(const Group& group)
{
    return { int16_t(group.integer()), -1 };
}

/// The name of a text style as an object refers to it.
inline QString styleName(KcDbObjectId style)
{
    const QString name = kcdbRecordName(style);
    return name.isEmpty() ? QStringLiteral("Standard") : name;
}

} // namespace dxf
