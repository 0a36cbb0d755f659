// Writing a changed object so that only what was changed differs: the record as it was read is compared with
// what the codec writes of the object as it was and as it is; groups that did not change keep their bytes,
// groups that no class knows keep their places.
#pragma once

#include "dxf/group_list.h"

#include <string>
#include <string_view>
#include <vector>

namespace dxf {

/// The groups of one record, with the bytes that each takes in the file.
struct SourceGroups {
    std::vector<OutGroup> groups;
    std::vector<std::string_view> bytes;
};

SourceGroups parseRecord(std::string_view record, Form form, Strings& strings);

/// Takes out of a record what shows the object as it was before a change: the proxy graphics that other
/// programs draw instead of it, and the embedded repetition of a text without columns (that of columns holds
/// more than the text).
void dropStalePictures(SourceGroups& source);

/// True when the lists hold the same values.
bool sameGroups(const std::vector<OutGroup>& a, const std::vector<OutGroup>& b);

/// The bytes of a changed record. `before` and `after` are what the codec writes of the object as read and as
/// it is, defaults included.
std::string patchRecord(
    const SourceGroups& source, const std::vector<OutGroup>& before, const std::vector<OutGroup>& after,
    Form form, const Strings& strings, const char* lineEnd);

} // namespace dxf
