// What properties and their values are called where a user reads them: by their names in drawing files, or as a
// module that knows its own tags registered them.
#pragma once

#include <QJsonValue>
#include <QMap>
#include <QString>

/// A tag, or another name under which a module stores something with an entity, in the user's words.
struct KcEdTagName {
    QString name;
    QMap<QString, QString> values; ///< what certain texts stand for; others are shown as they are
};
/// Takes the place of what was registered for that application before.
void kcedNameTag(const QString& application, KcEdTagName name);
/// The name as it was registered, else the application's own.
KcEdTagName kcedTagName(const QString& application);

/// A kind of entity by its name in files, such as "LWPOLYLINE": "Polyline". What has no other name is itself.
QString kcedKindInWords(const QString& typeName);
/// A key of an entity dump, such as "patternScale": "Pattern scale".
QString kcedPropertyInWords(const QString& key);
/// A single value of a dump: angles in degrees, choices by their names, numbers without needless digits.
QString kcedValueInWords(const QString& key, const QJsonValue& value);
