#pragma once

#include "platform/engine/dao/DBEngine.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>
#include <span>

/// A statement and what it delivers: rows parted by " / ", values by "|", NULL as "NULL"; or "#number" and
/// the start of the description for a failure.
struct DialectCase {
    const char16_t* statement;
    const char16_t* result;
};

/// A small book whose rows stand in DialectFixture.cpp, in a file of its own for each test.
class DialectFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// What an opened statement delivers, or its failure.
    QString Open(const QString& sql) const;
    /// "rows=n" of an executed statement, or its failure.
    QString Execute(const QString& sql, int options = engine::dbFailOnError) const;
    /// The names of the columns, joined by "|".
    QString Names(const QString& sql) const;

    void CheckOpen(std::span<const DialectCase> cases) const;
    void CheckExecute(std::span<const DialectCase> cases) const;

    QTemporaryDir m_folder;
    std::shared_ptr<engine::Database> m_database;
};
