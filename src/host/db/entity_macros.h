// What every entity class with plain values declares.
#pragma once

/// Access to the values as the file holds them (object coordinates), and the operations that every entity has.
#define KCDB_ENTITY_DATA                                                                                     \
public:                                                                                                      \
    const Data& data() const { return m_data; }                                                              \
    Data& data() { return m_data; }                                                                          \
    KcGeExtents3d geomExtents() const override { return extentsUnder(KcGeMatrix3d()); }                      \
    KcGeExtents3d extentsUnder(const KcGeMatrix3d& matrix) const override;                                   \
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d& matrix) override;                                      \
                                                                                                             \
protected:                                                                                                   \
    Data m_data;                                                                                             \
                                                                                                             \
public:
