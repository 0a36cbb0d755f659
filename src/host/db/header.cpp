// Header variables.

#include "db/header.h"

KCRX_DEFINE(KcDbHeader, KcDbObject, "AcDbHeader")

namespace {

std::string keyOf(const QString& name)
{
    return name.toUpper().toStdString();
}

} // namespace

const KcDbHeader::Variable* KcDbHeader::find(const QString& name) const
{
    const auto found = m_index.find(keyOf(name));
    return found == m_index.end() ? nullptr : &m_variables[found->second];
}

double KcDbHeader::real(const QString& name, double other) const
{
    const Variable* v = find(name);
    return v && !v->values.empty() ? v->values.front().real(other) : other;
}

int64_t KcDbHeader::integer(const QString& name, int64_t other) const
{
    const Variable* v = find(name);
    return v && !v->values.empty() ? v->values.front().integer(other) : other;
}

QString KcDbHeader::text(const QString& name) const
{
    const Variable* v = find(name);
    return v && !v->values.empty() ? v->values.front().text() : QString();
}

KcGePoint3d KcDbHeader::point(const QString& name, KcGePoint3d other) const
{
    const Variable* v = find(name);
    if (!v || v->values.empty())
        return other;
    const auto* p = std::get_if<KcGePoint3d>(&v->values.front().value);
    return p ? *p : other;
}

void KcDbHeader::set(const QString& name, KcDbTypedValue value)
{
    const auto found = m_index.find(keyOf(name));
    if (found == m_index.end())
        append({ name, { std::move(value) } });
    else
        m_variables[found->second].values = { std::move(value) };
}

void KcDbHeader::append(Variable variable)
{
    m_index.emplace(keyOf(variable.name), m_variables.size());
    m_variables.push_back(std::move(variable));
}
