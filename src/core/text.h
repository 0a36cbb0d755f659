// Texts of the drawing, single-line and multiline alike.
#pragma once

#include "core/entity.h"

class MText : public CEntity {
public:
    /// Texts, attributes and multiline texts.
    bool Initialize(KcDbObjectId id, const KcDbDatabase* database = nullptr) override;
    bool IsMultiline() const;

    /// What a reader sees, without format codes; lines are separated by line feeds.
    QString GetText() const;
    /// Takes plain text: what would be a format code is kept as the characters it is written with. A line
    /// feed begins a new line in a multiline text and is a blank in a single-line one.
    bool SetText(const QString& text);
    /// Height of capital letters in drawing units; also that of pieces of a multiline text which have a
    /// height of their own, in proportion. False unless positive.
    bool SetHeight(double height);
    double GetHeight() const;
    /// Size as drawn, in drawing units: of a single line its advance width and its height.
    double ActualWidth() const;
    double ActualHeight() const;
    /// The point that the justification or attachment refers to; world coordinates.
    bool GetPosition(KcGePoint3d& point) const;
    bool SetPosition(KcGePoint3d point);
    /// Turns the text to run along a vector, world coordinates. False for one without length in the text's
    /// plane.
    bool SetDirection(KcGeVector3d direction);
    /// False when the id is no text style of the drawing.
    bool SetTextStyle(KcDbObjectId style);
    KcDbObjectId GetTextStyle() const;
};
