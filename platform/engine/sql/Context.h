#pragma once

#include "platform/engine/sql/Tree.h"
#include "platform/engine/sql/Written.h"

#include <map>
#include <optional>

namespace engine::sql {

/// What the writers of one statement share: its literals on their way to parameters, and the mistakes that
/// are reported only when the whole of it is known.
class Context {
public:
    /// `firstParameter`: how many parameters stand before those of the literals.
    Context(const Scanned& scanned, int firstParameter)
        : m_scanned(scanned)
        , m_firstParameter(firstParameter) {}

    /// A literal: a parameter, or its value if the statement writes it out.
    Written WriteLiteral(const Node& literal);
    /// A literal that goes into a column as it is; nothing if its value is written out.
    std::optional<Written> WriteAssigned(const Node& literal, const ColumnInfo& column, const QString& table);

    QStringView Text(const Node& node) const {
        return QStringView(m_scanned.text).mid(node.start, node.end - node.start);
    }

    const std::vector<Parameter>& Parameters() const { return m_parameters; }
    int ParameterCount() const { return m_firstParameter + static_cast<int>(m_parameters.size()); }

    void AddUnknownName(const QString& name);
    void AddTypeMismatch() { m_mismatch = true; }
    const QStringList& UnknownNames() const { return m_unknown; }
    /// Failures 3061 and 3464, if anything called for them.
    void RaiseMistakes() const;
    void RaiseTypeMismatch() const;

    /// A name for a source, unlike any other in the statement.
    QString NewAlias() { return u'q' + QString::number(++m_aliases); }

    /// Failure 3075 with the text of the expression, 3077 in the criteria of a search.
    [[noreturn]] void RaiseSyntax(const Node& node, const QString& reason) const;

    /// In the form of an action statement that leaves failing rows out, conversions do not fail.
    bool lenient = false;
    /// The text is the criteria of a search, not a statement.
    bool criteria = false;

private:
    QString ParameterOf(const Node& literal, const std::optional<ColumnInfo>& column, const QString& table);

    const Scanned& m_scanned;
    int m_firstParameter;
    std::vector<Parameter> m_parameters;
    std::map<int, int> m_numbers; ///< parameter of each literal
    QStringList m_unknown;
    bool m_mismatch = false;
    int m_aliases = 0;
};

} // namespace engine::sql
