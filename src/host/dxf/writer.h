// The two ways to write a drawing: over the file it was read from, keeping what did not change, and anew.
#pragma once

#include "db/database.h"
#include "dxf/drawing_file.h"
#include "dxf/group_list.h"

#include <string>
#include <string_view>
#include <vector>

namespace dxf {

class SourceFile;

/// Bytes of a file as pieces, most of which lie in memory already.
struct Pieces {
    std::vector<std::string_view> views;
    std::vector<std::unique_ptr<std::string>> owned;
    void add(std::string_view view)
    {
        if (!view.empty())
            views.push_back(view);
    }
    void add(std::string text)
    {
        if (text.empty())
            return;
        owned.push_back(std::make_unique<std::string>(std::move(text)));
        views.push_back(*owned.back());
    }
};

/// What stands in the way of writing the drawing in a version; empty when nothing does.
QString obstacleTo(KcDbDatabase& database, KcDbVersion version);

/// Writes the drawing over the file it was read from.
void patchFile(KcDbDatabase& database, const SourceFile& file, Pieces& out);

/// Writes the whole drawing anew as text in version 2010 or later. Throws FileError, naming the object, when
/// something in it cannot be carried over.
void writeAnew(KcDbDatabase& database, KcDbVersion version, Pieces& out, QStringList& notes);

/// Brings the block marks in line with their blocks' records (name, origin, flags).
void updateBlockMarks(KcDbDatabase& database);

/// Gives old-style polylines that were made in memory the end mark that follows their vertices.
void completeSequences(KcDbDatabase& database);

/// The lines of the classes section for a kind of object that needs an entry there; empty for the built-in
/// kinds.
struct ClassEntry {
    const char *fileName, *className, *application;
    int flags;
    bool isEntity;
};
const ClassEntry* classEntryFor(std::string_view fileName);

} // namespace dxf
