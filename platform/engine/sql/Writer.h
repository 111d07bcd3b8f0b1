#pragma once

#include "platform/engine/sql/Bound.h"

namespace engine::sql {

/// Writes what has been bound as SQLite text. Nothing is decided here.
class Writer {
public:
    /// `ignores`: in the form of an action statement that leaves failing rows out.
    explicit Writer(bool ignores = false)
        : m_ignores(ignores) {}

    /// `zv_like(q1."a01last", ?1) AND q1."a01clid" <> ?2`
    QString Text(const TermPtr& term) const;

    /// `SELECT q1."a01last" AS c0 FROM "a01" AS q1 WHERE q1."a01clid" > ?1 ORDER BY q1."a01last" COLLATE
    /// ZV_SORT LIMIT 5`. With TOP of sorted rows:
    /// `SELECT c0 FROM (SELECT *, rank() OVER (ORDER BY o0) AS place FROM (SELECT q1."a01last" AS c0,
    /// q1."a01clid" AS o0 FROM "a01" AS q1)) WHERE place <= 5 ORDER BY place`.
    /// `rowNumber`: one more column.
    QString Text(const BoundSelect& select, const QString& rowNumber = {}) const;

    /// `SELECT ... UNION ALL SELECT ... ORDER BY 1`
    QString Text(const BoundQuery& query) const;

    /// `INSERT INTO "t02" ("t02cval") VALUES (?1)`, of many rows `INSERT INTO "t02" ("t02cval") SELECT
    /// zv_to(10, 50, 't02.t02cval', c0) FROM (SELECT ...)`
    QString Insert(const BoundInsert& insert) const;

    /// `UPDATE OR IGNORE "a01" AS q1 SET "a01last" = ?1 WHERE q1."a01clid" = ?2`. A join finds the new values
    /// of all rows first: `UPDATE "a01" AS changed SET "a01last" = news.v0 FROM (SELECT q1.rowid AS row, ...
    /// AS v0 FROM "a01" AS q1 JOIN ...) AS news WHERE changed.rowid = news.row`.
    QString Update(const BoundChange& update) const;

    /// `DELETE FROM "a01" AS q1 WHERE q1."a01clid" = ?1`, of a join `DELETE FROM "a01" AS changed WHERE
    /// changed.rowid IN (SELECT q1.rowid FROM "a01" AS q1 JOIN ...)`
    QString Delete(const BoundChange& remove) const;

private:
    void Add(const Term& term, QString& text) const;
    QString Body(const BoundSelect& select, const QStringList& columns) const;
    QString Ranked(const BoundSelect& select) const;
    QStringList Columns(const BoundSelect& select) const;
    QString Order(const std::vector<OrderTerm>& terms) const;
    QString Where(const std::vector<Operand>& conditions, const QStringList& further = {}) const;
    QStringList Texts(const std::vector<TermPtr>& terms) const;

    bool m_ignores;
};

} // namespace engine::sql
