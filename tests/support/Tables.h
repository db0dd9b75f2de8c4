#pragma once

#include "AppError.h"

#include <QFile>
#include <QTest>

// Tables of cases as arrays of plain structs or of texts, one row a case and every row named by its
// first member: the _data() function adds the rows, the test function fetches the one that runs.
inline const char *rowName(const char *const *row)
{
    return row[0];
}
template <typename Row> const char *rowName(const Row &row)
{
    return row.name;
}

template <typename Row, size_t N> void addRows(const Row (&rows)[N])
{
    QTest::addColumn<int>("row");
    for (size_t i = 0; i < N; ++i)
        QTest::newRow(rowName(rows[i])) << int(i);
}

template <typename Row, size_t N> const Row &fetchRow(const Row (&rows)[N])
{
    return rows[*static_cast<const int *>(QTest::qData("row", qMetaTypeId<int>()))];
}

// A list in a cell of a table, its items separated by " | ".
inline QStringList items(const char *list, Qt::SplitBehavior empty = Qt::SkipEmptyParts)
{
    return list && *list ? QString::fromLatin1(list).split(QStringLiteral(" | "), empty) : QStringList();
}

// What a statement gives as text, or "error N" with the number of the AppError it throws, so that
// results and failures stand in one column.
template <typename Statement> QString outcome(Statement &&statement)
{
    try {
        return statement();
    } catch (const AppError &error) {
        return QStringLiteral("error %1").arg(error.number);
    }
}

// Files as the tests set them up and read them back, byte for byte.
inline const QByteArray kNoFile = QByteArrayLiteral("<no file>");

inline QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : kNoFile;
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
