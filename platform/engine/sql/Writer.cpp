#include "platform/engine/sql/Writer.h"

#include "platform/engine/schema/Names.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

QString Clause(const QString& words, const QString& text) {
    return text.isEmpty() ? text : words + text;
}

/// The row number of the target under another name of its table.
QString ChangedRow(ScopeSource target) {
    target.alias = u"changed"_s;
    return target.RowId();
}

} // namespace

QString Writer::Text(const TermPtr& term) const {
    QString text;
    if (term)
        Add(*term, text);
    return text;
}

void Writer::Add(const Term& term, QString& text) const {
    if (m_ignores && term.ignoring)
        return Add(*term.ignoring, text);
    if (term.operands.empty()) {
        text += term.form;
        return;
    }
    auto next = term.operands.begin();
    for (const QChar sign : term.form) {
        if (sign != u'%') {
            text += sign;
            continue;
        }
        const Operand& operand = *next++;
        const bool enclosed = operand.term && operand.term->precedence < operand.least;
        if (enclosed)
            text += u'(';
        if (operand.term)
            Add(*operand.term, text);
        else
            text += Text(*operand.query);
        if (enclosed)
            text += u')';
    }
}

QStringList Writer::Texts(const std::vector<TermPtr>& terms) const {
    QStringList texts;
    for (const TermPtr& term : terms)
        texts += Text(term);
    return texts;
}

QString Writer::Order(const std::vector<OrderTerm>& terms) const {
    QStringList texts;
    for (const OrderTerm& term : terms)
        texts += Text(Sorted(term.value).term) + (term.descending ? u" DESC"_s : QString());
    return texts.join(u", "_s);
}

QStringList Writer::Columns(const BoundSelect& select) const {
    QStringList texts;
    for (const auto& column : select.columns) {
        const Bound value = select.distinct ? Folded(column.value) : column.value;
        texts += Text(value.term) + u" AS c"_s + QString::number(texts.size());
    }
    return texts;
}

QString Writer::Body(const BoundSelect& select, const QStringList& columns) const {
    return (select.distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s) + columns.join(u", "_s) +
           Clause(u" FROM "_s, Text(select.from)) + Clause(u" WHERE "_s, Text(select.where)) +
           Clause(u" GROUP BY "_s, Texts(select.groupBy).join(u", "_s)) +
           Clause(u" HAVING "_s, Text(select.having));
}

QString Writer::Text(const BoundSelect& select, const QString& rowNumber) const {
    if (select.top > 0 && (select.percent || !select.orderBy.empty()))
        return Ranked(select);
    QStringList columns = Columns(select);
    if (!rowNumber.isEmpty())
        columns += rowNumber;
    const QString text = Body(select, columns) + Clause(u" ORDER BY "_s, Order(select.orderBy));
    return select.top > 0 ? text + u" LIMIT "_s + QString::number(select.top) : text;
}

/// TOP takes in the rows that are equal to the last one in the sort columns, and a share of all rows can only
/// be told when they are counted. So the rows are ranked.
QString Writer::Ranked(const BoundSelect& select) const {
    QStringList columns = Columns(select);
    QStringList names;
    while (names.size() < columns.size())
        names += u'c' + QString::number(names.size());
    std::vector<OrderTerm> order;
    for (const OrderTerm& term : select.orderBy) {
        const QString name = u'o' + QString::number(order.size());
        columns += Text(Sorted(term.value).term) + u" AS "_s + name;
        order.push_back({DeliveredValue(term.value, MakeTerm(name)), term.descending});
    }
    const QString rank =
        order.empty() ? u"row_number() OVER ()"_s : u"rank() OVER (ORDER BY "_s + Order(order) + u')';
    const QString most = QString::number(select.top);
    return u"SELECT "_s + names.join(u", "_s) + u" FROM (SELECT *, "_s + rank + u" AS place"_s +
           (select.percent ? u", count(*) OVER () AS total"_s : u""_s) + u" FROM ("_s +
           Body(select, columns) + u")) WHERE place <= "_s +
           (select.percent ? u"(total * "_s + most + u" + 99) / 100"_s : most) + u" ORDER BY place"_s;
}

QString Writer::Text(const BoundQuery& query) const {
    QString text;
    for (const BoundSelect& part : query.parts) {
        if (!text.isEmpty())
            text += part.all ? u" UNION ALL "_s : u" UNION "_s;
        // A part of a UNION takes no LIMIT of its own beside others.
        const bool limited = query.parts.size() > 1 && part.top > 0;
        text += limited ? u"SELECT * FROM ("_s + Text(part) + u')' : Text(part);
    }
    return text + Clause(u" ORDER BY "_s, Order(query.orderBy));
}

QString Writer::Where(const std::vector<Operand>& conditions, const QStringList& further) const {
    QStringList texts;
    for (const Operand& condition : conditions)
        texts += Text(MakeTerm(u"%", {condition}));
    return Clause(u" WHERE "_s, (texts + further).join(u" AND "_s));
}

QString Writer::Insert(const BoundInsert& insert) const {
    QStringList names;
    QStringList values;
    QStringList keys;
    for (const NewValue& value : insert.row) {
        names += QuoteName(insert.table->At(value.column).name);
        values += Text(value.value);
        if (m_ignores && value.key)
            keys += values.back() + u" IS NOT NULL"_s;
    }
    const QString start = (m_ignores ? u"INSERT OR IGNORE INTO "_s : u"INSERT INTO "_s) +
                          QuoteName(insert.table->name) + u" ("_s + names.join(u", "_s) + u") "_s;
    if (!insert.from && keys.isEmpty())
        return start + u"VALUES ("_s + values.join(u", "_s) + u')';
    const QString from = insert.from ? u" FROM ("_s + Text(*insert.from) + u')' : QString();
    return start + u"SELECT "_s + values.join(u", "_s) + from + Where({}, keys);
}

QString Writer::Update(const BoundChange& update) const {
    QStringList sets;
    QStringList news{update.target->RowId() + u" AS row"_s};
    QStringList keys;
    for (const NewValue& value : update.values) {
        QString text = Text(value.value);
        if (update.joins) {
            const QString name = u'v' + QString::number(sets.size());
            news += text + u" AS "_s + name;
            text = u"news."_s + name;
        }
        sets += QuoteName(update.target->table->At(value.column).name) + u" = "_s + text;
        if (m_ignores && value.key)
            keys += text + u" IS NOT NULL"_s;
    }
    const QString start = m_ignores ? u"UPDATE OR IGNORE "_s : u"UPDATE "_s;
    const QString set = u" SET "_s + sets.join(u", "_s);
    if (!update.joins)
        return start + Text(update.from) + set + Where(update.conditions, keys);
    return start + QuoteName(update.target->table->name) + u" AS changed"_s + set + u" FROM (SELECT "_s +
           news.join(u", "_s) + u" FROM "_s + Text(update.from) + Where(update.conditions) + u") AS news"_s +
           Where({}, QStringList{ChangedRow(*update.target) + u" = news.row"_s} + keys);
}

QString Writer::Delete(const BoundChange& remove) const {
    const QString rows = Text(remove.from) + Where(remove.conditions);
    if (!remove.joins)
        return u"DELETE FROM "_s + rows;
    return u"DELETE FROM "_s + QuoteName(remove.target->table->name) + u" AS changed WHERE "_s +
           ChangedRow(*remove.target) + u" IN (SELECT "_s + remove.target->RowId() + u" FROM "_s + rows +
           u')';
}

} // namespace engine::sql
