// Hatch pattern files: what the patterns of a name look like, read from the folders of the search path.
//
//     *NAME, description
//     angle, base x, base y, offset along, offset across [, dash, -gap, …]     one line a family
//
// Angles in degrees; everything from ";" on is a comment. A dash of 0 is a dot. A file that holds something
// wrong still gives all its other patterns.
#pragma once

#include "ge/hatch_lines.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A pattern as its file defines it: at scale 1, angle 0 and origin (0, 0).
struct KcDbHatchPattern {
    QString name; ///< as written
    QString description;
    /// Nothing for a solid fill.
    std::vector<KcGeHatchFamily> families;
    QString file; ///< where it was read
};

/// Something wrong in a pattern file. `text` is one sentence that names file, line and cause.
struct KcDbPatternFinding {
    int line = 0; ///< counted from 1; 0: the file as a whole
    QString text;
};

struct KcDbPatternFile {
    std::vector<KcDbHatchPattern> patterns;
    std::vector<KcDbPatternFinding> findings;
};

/// Reads the bytes of a pattern file: UTF-8 where they can be, else the Chinese code page. `name` is for the
/// findings. Patterns with a faulty line are left out, and so are later ones of a name that has been met.
KcDbPatternFile kcdbParsePatternFile(const QByteArray& bytes, const QString& name);

/// The patterns that this process knows. Files are read when first asked for and again after `reread`.
class KcDbHatchPatterns {
public:
    /// Lengths of patterns are inches or millimetres: most predefined ones exist in both sizes.
    enum class Units { Inches, Millimetres };

    static KcDbHatchPatterns& instance();

    /// The definition of a name, compared without regard to case; null when no file has it. A file called
    /// like the pattern comes before files that hold many. The pointer is good until the next `reread`.
    /// "SOLID" is always there.
    const KcDbHatchPattern* find(const QString& name, Units units = Units::Millimetres);
    /// All names, each once, in capitals, by the alphabet; SOLID first.
    QStringList names(Units units = Units::Millimetres);
    /// Forgets what was read: the next question reads the files again.
    void reread();
    /// What was wrong in the files read; folders that are missing are no finding.
    const std::vector<KcDbPatternFinding>& findings();

    /// A further folder whose *.pat files are read after Sys and Sys/Pattern of the application root. Rereads.
    void addFolder(const QString& folder);

private:
    void load();
    void loadFile(const QString& path);

    struct Entry {
        KcDbHatchPattern pattern;
        bool ownFile = false; ///< its file bears its name
        bool inches = true, millimetres = true; ///< for which drawings it is meant
    };
    bool m_loaded = false;
    QString m_root; ///< the application root that was read
    QStringList m_folders;
    std::vector<Entry> m_entries;
    std::vector<KcDbPatternFinding> m_findings;
};
