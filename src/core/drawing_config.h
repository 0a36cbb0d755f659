// What the product remembers with a drawing: area names, table headers, its text style, label layers, the
// current layer standard. It lies in a dictionary of its own ("VDL_CONFIG") below the named objects and is
// undone and saved with the drawing. Nothing is written until something is set: a drawing that was only
// looked at stays as it was.
#pragma once

#include "core/layer_standard.h"
#include "core/table_info.h"
#include "db/object.h"

#include <map>
#include <memory>

enum class VdlOpenMode { kForRead, kForWrite };

class CVdlConfig {
public:
    explicit CVdlConfig(KcDbDatabase& database, VdlOpenMode mode)
        : m_database(&database)
        , m_mode(mode)
    {
    }

    /// True when the drawing holds anything of this; false while every answer is a default.
    bool IsInDrawing() const;
    /// Ends the access: setters refuse from here on. Destroying the object does as well.
    void close() { m_mode = VdlOpenMode::kForRead; }

    // Setters give false when the configuration was opened for reading.

    /// The area-name dictionary: names in code point order, each with its field text.
    std::map<QString, QString> GetDimInfo() const;
    /// Adds a name, or gives it another text.
    bool AppendAreaDimInfo(const QString& name, const QString& text);
    /// Replaces the whole dictionary.
    bool SetDimInfo(const std::map<QString, QString>& names);

    /// Headers and visible columns of a table: what the drawing holds for it, completed from the layout
    /// document for keys that the drawing says nothing of; a table that the drawing does not mention is as
    /// the document has it. Nothing when neither knows the table.
    std::optional<CTbInfoStd> GetTbInfoStd(const QString& table) const;
    /// Keeps a table's headers with the drawing; they replace what it held for that table.
    bool SetTbInfoStd(const CTbInfoStd& info);
    /// Takes all tables of the layout document into the drawing as the document has them now. False when the
    /// document cannot be read, too.
    bool LoadTbInfoStd();

    /// The name of the text style of the product's texts. An empty name goes back to the drawing's current
    /// style.
    bool SetCurrentTextStyle(const QString& name);

    /// The layer standard that the drawing follows: the name stored, else the first one of the layer standard
    /// document. False, and an empty name, when there is neither.
    bool GetCurrentStd(QString& name) const;
    bool SetCurrentStd(const QString& name);
    /// Its rows as the document has them; without rows when the document lacks it.
    CLayerStd GetLayerStd() const;

    // Single values under a name of their own. Empty when not set; setting an empty text takes the value
    // away.
    QString value(const QString& name) const;
    bool setValue(const QString& name, const QString& value);

private:
    KcDbDatabase* m_database;
    VdlOpenMode m_mode;
};

/// The configuration of a drawing (null: of the current one); null when there is no drawing. Also for a
/// drawing that holds none yet: opened for reading it then answers from the shipped documents, so that a
/// table can be built in a fresh drawing without writing anything but the table.
std::unique_ptr<CVdlConfig> GetDwgGlobal(VdlOpenMode mode, KcDbDatabase* database = nullptr);

// One value at a time; a null database is the current drawing. Getters give false and leave the value alone
// when the drawing does not say; setters give false without a drawing.

/// The product's text style where one is set and the drawing has it, else the drawing's current one.
bool GetCurrentTextStyle(QString& name, KcDbDatabase* database = nullptr);
KcDbObjectId GetVdlCurrentTextStyle(KcDbDatabase* database = nullptr);

/// The layer for tree labels that the user chose.
bool GetTreeDimLayer(QString& name, KcDbDatabase* database = nullptr);
bool SetTreeDimLayer(const QString& name, KcDbDatabase* database = nullptr);
/// The layer for area labels that the user chose.
bool GetAreaDimLayer(QString& name, KcDbDatabase* database = nullptr);
bool SetAreaDimLayer(const QString& name, KcDbDatabase* database = nullptr);
/// Whether labels get a background that covers what lies below them.
bool GetTextBackFill(bool& value, KcDbDatabase* database = nullptr);
bool SetTextBackFill(bool value, KcDbDatabase* database = nullptr);
