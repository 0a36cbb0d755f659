// Kinds of objects that are not built into the format: a file that holds one declares its class.

#include "dxf/writer.h"

namespace dxf {

namespace {

// File name, class, application and flags as programs of 2010 write them.
constexpr ClassEntry kEntries[] = {
    { "ACAD_TABLE", "AcDbTable", "ObjectDBX Classes", 1025, true },
    { "WIPEOUT", "AcDbWipeout", "WipeOut", 127, true },
    { "WIPEOUTVARIABLES", "AcDbWipeoutVariables", "WipeOut", 0, false },
    { "TABLESTYLE", "AcDbTableStyle", "ObjectDBX Classes", 4095, false },
    { "ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", "ObjectDBX Classes", 0, false },
    { "SORTENTSTABLE", "AcDbSortentsTable", "ObjectDBX Classes", 0, false },
};

} // namespace

const ClassEntry* classEntryFor(std::string_view fileName)
{
    for (const ClassEntry& entry : kEntries)
        if (fileName == entry.fileName)
            return &entry;
    return nullptr;
}

} // namespace dxf
